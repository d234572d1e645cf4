# load_datatable.R FILE: fread of data.table on one thread. Prints its processor time as JSON.
suppressPackageStartupMessages(library(data.table))
setDTthreads(1)
file <- commandArgs(trailingOnly = TRUE)[1]
start <- proc.time()
cells <- fread(file, header = FALSE, sep = ",", nThread = 1, showProgress = FALSE)
used <- proc.time() - start
cat(sprintf('{"seconds": %.4f, "cells": %d}\n', used[["user.self"]] + used[["sys.self"]], nrow(cells) * ncol(cells)))
