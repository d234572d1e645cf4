#pragma once

#include "tools/commandline/Command.h"

/// "info": shows the content of track files.
class InfoCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "check": reports every problem of track files, with its place.
class CheckCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "render": draws a track as a picture.
class RenderCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "diff": compares two tracks.
class DiffCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "paths export": writes the paths of a track as CSV or JSON.
class PathsExportCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "paths import": replaces the paths of a track by those of a CSV or JSON file.
class PathsImportCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "convert": writes a text track as a binary one.
class ConvertCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "profile": writes or plots the heights along a path.
class ProfileCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "list": lists the entries of a backup.
class ListCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "verify": checks that backups are complete and their tracks readable.
class VerifyCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "extract": copies files out of a backup's workspace.
class ExtractCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};

/// "replace": replaces a file in a backup's workspace.
class ReplaceCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
