#pragma once

#include <map>
#include <string>
#include <vector>

/// An archive with one defect, named after it, and what must happen when it is unpacked. Nothing outside the
/// target is ever touched, and what is made is files and folders only.
struct HostileArchive {
    std::string name;
    std::string content;
    /// The message of the failure, the target standing as "@"; empty when unpacking ends well.
    std::string message;
    /// What stands in the target afterwards; folders end in "/".
    std::map<std::string, std::string> leaves;
    /// Whether it ends as an archive must; the server restores no other.
    bool whole = true;
};

std::vector<HostileArchive> HostileArchives();
