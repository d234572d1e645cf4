#include "samples/SampleOptionsReader.h"
#include "samples/SampleWorkspace.h"
#include "samples/TrackFileWriter.h"

#include <exception>
#include <iostream>

namespace {

constexpr const char* kHelp =
    R"(corvane-samples: track files that look like what a line sensor sees of a machined part

  corvane-samples track FILE [OPTION...]         write one track file
  corvane-samples workspace FOLDER [--seed N]    write a sensor's workspace with tracks into a folder
  corvane-samples --help

Options of track:
  --width N       columns, 2 to 100000 (300)
  --height N      rows, 2 to 100000 (200)
  --format F      text or binary (text)
  --part P        groove or seam: what there is to follow on the part (groove)
  --seed N        another part and other noise for each number, 0 to 4294967295 (1)
  --no-paths      without the paths along the groove or seam and across the boss

The same options give the same bytes on every machine. A file is written row by row, so that its size is
bounded by the disk alone. Ends with 0 when all was written, 1 when it was not, 2 for arguments that are
not understood.
)";

void Run(const SampleRequest& request) {
    if (request.task == SampleRequest::Task::Workspace)
        WriteSampleWorkspace(request.path, request.seed);
    else if (request.task == SampleRequest::Task::Track)
        WriteTrackFile(request.path, MachinedPart(request.kind, request.width, request.height, request.seed),
                       request.options);
    else
        std::cout << kHelp;
}

} // namespace

int main(int argc, char** argv) {
    try {
        Run(ReadSampleRequest({argv + 1, argv + argc}));
        return 0;
    } catch (const BadArgument& bad) {
        std::cerr << "corvane-samples: " << bad.what() << "; see --help\n";
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << "corvane-samples: " << failure.what() << '\n';
        return 1;
    }
}
