#pragma once

#include <map>
#include <string>
#include <vector>

/// An archive with one defect, named after it, and what must happen when it is unpacked. Nothing outside the
/// target is ever touched, and what is made is files and folders only.
struct HostileArchive {
    std::string name;
    std::string content;
    /// The message of the failure, with "@" for the target; empty when unpacking succeeds.
    std::string message;
    /// The content of the target afterwards; folders end in "/".
    std::map<std::string, std::string> leaves;
    /// Whether it is a complete archive; the server restores no other.
    bool complete = true;
};

std::vector<HostileArchive> HostileArchives();
