#include "basalt/FileOwnership.h"

#include "basalt/FileFacts.h"
#include "basalt/windows/SystemFile.h"

#include <aclapi.h>

namespace {

constexpr unsigned kWriting = 0222;

/// Whether a list of rights is more than what the folder hands down, and so has to be given to what takes the
/// place.
bool IsItsOwn(const ACL& list) {
    for (DWORD i = 0; i < list.AceCount; ++i) {
        void* entry = nullptr;
        if (GetAce(const_cast<ACL*>(&list), i, &entry) == FALSE ||
            (static_cast<const ACE_HEADER*>(entry)->AceFlags & INHERITED_ACE) == 0)
            return true;
    }
    return false;
}

/// The list of who may do what with a file, where it is the file's own.
std::string OwnAccessList(HANDLE file, bool* isProtected) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ACL* list = nullptr;
    std::string bytes;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                        &descriptor) != ERROR_SUCCESS)
        return bytes;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    *isProtected = GetSecurityDescriptorControl(descriptor, &control, &revision) != FALSE &&
                   (control & SE_DACL_PROTECTED) != 0;
    if (list != nullptr && (*isProtected || IsItsOwn(*list)))
        bytes.assign(reinterpret_cast<const char*>(list), list->AclSize);
    LocalFree(descriptor);
    return bytes;
}

bool GiveAccessList(HANDLE file, std::string list, bool isProtected) {
    const DWORD kind = DACL_SECURITY_INFORMATION | (isProtected ? PROTECTED_DACL_SECURITY_INFORMATION
                                                                : UNPROTECTED_DACL_SECURITY_INFORMATION);
    const DWORD reason = SetSecurityInfo(file, SE_FILE_OBJECT, kind, nullptr, nullptr,
                                         reinterpret_cast<ACL*>(list.data()), nullptr);
    SetLastError(reason);
    return reason == ERROR_SUCCESS;
}

} // namespace

std::optional<FileOwnership> FileOwnership::Of(const std::string& path) {
    const FileDescriptor file(NumberOf(OpenAt(path, READ_CONTROL | FILE_READ_ATTRIBUTES, 0)));
    FileFacts facts;
    if (!file.IsOpen() || !AskHandle(HandleOf(file.Number()), &facts))
        return std::nullopt;
    FileOwnership found;
    found.permissions = facts.permissions;
    found.accessList = OwnAccessList(HandleOf(file.Number()), &found.isProtected);
    return found;
}

bool FileOwnership::GiveTo(const FileDescriptor& file) const {
    return accessList.empty() || GiveAccessList(HandleOf(file.Number()), accessList, isProtected);
}

bool FileOwnership::GiveTo(const std::string& path) const {
    if (accessList.empty())
        return true;
    const FileDescriptor file(NumberOf(
        OpenAt(path, READ_CONTROL | WRITE_DAC | FILE_READ_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT)));
    FileFacts facts;
    return file.IsOpen() && AskHandle(HandleOf(file.Number()), &facts) && facts.kind != FileKind::Link &&
           GiveTo(file);
}

bool MayWrite(const std::string& path) {
    // Opening the file checks the access list, and whether another program holds it. The read-only attribute
    // is checked separately: an administrator's right to restore files overrides it.
    const FileDescriptor file(NumberOf(OpenAt(path, GENERIC_WRITE, 0)));
    FileFacts facts;
    return file.IsOpen() && AskHandle(HandleOf(file.Number()), &facts) && (facts.permissions & kWriting) != 0;
}
