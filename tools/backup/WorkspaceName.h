#pragma once

#include <string>

/// The name of a file in the workspace, as a user gives it: a name without "/" is that of a track in
/// vdk/ContourPath.
/// @throws Failure with ExitCode::Misused for a name that leads out of the workspace
std::string WorkspaceName(const std::string& given);
