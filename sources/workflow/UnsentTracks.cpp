#include "workflow/UnsentTracks.h"

#include "basalt/FilePath.h"
#include "basalt/bFile.h"
#include "log/Log.h"
#include "workflow/KeptCopies.h"
#include "workflow/KeptFolder.h"
#include "workflow/KeptRecord.h"

#include <QCryptographicHash>

#include <system_error>
#include <utility>

namespace {

constexpr std::string_view kMagic = "CorvUnst";
constexpr std::uint32_t kVersion = 1;

/// A workspace has the same file in each run, and each workspace its own.
std::string FileNameFor(const std::string& workspace) {
    constexpr int kDigits = 32;
    const QByteArray hash =
        QCryptographicHash::hash(QByteArray::fromStdString(workspace), QCryptographicHash::Sha256);
    return ".unsent-" + hash.toHex().left(kDigits).toStdString();
}

/// Whether a name cannot lead out of its folder.
bool IsFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::set<std::string> NamesIn(const std::string& content, const std::string& workspace) {
    KeptRecordReader record(content, kMagic, kVersion);
    if (record.ReadText() != workspace)
        throw std::runtime_error("it belongs to another workspace");
    std::set<std::string> names;
    for (auto left = record.Read<std::uint64_t>(); left > 0; --left) {
        std::string name = record.ReadText();
        if (!IsFileName(name))
            throw std::runtime_error("it holds what is no file name");
        names.insert(std::move(name));
    }
    record.ExpectEnd();
    return names;
}

void WriteNames(KeptRecordWriter record, const std::string& workspace, const std::set<std::string>& names) {
    record.AddText(workspace);
    record.Add(std::uint64_t{names.size()});
    for (const std::string& name : names)
        record.AddText(name);
    record.Finish();
}

} // namespace

UnsentTracks::UnsentTracks(KeptCopies& keeping, const std::string& workspaceFolder, std::string trackFolder)
    : copies(keeping),
      workspace(AbsolutePath(workspaceFolder)),
      tracks(std::move(trackFolder)),
      file(FileNameFor(workspace)) {
    Read();
}

void UnsentTracks::Record(const std::string& name) {
    if (names.insert(name).second)
        Store();
}

void UnsentTracks::Forget(const std::string& name) {
    if (names.erase(name) > 0)
        Store();
}

void UnsentTracks::Clear() {
    if (IsEmpty())
        return;
    names.clear();
    Store();
}

void UnsentTracks::Keep() {
    for (const std::string& name : names) {
        const std::string path = tracks + "/" + name;
        if (bFile_Exists(path.c_str()) != 0)
            copies.KeepFile(path, KeptReason::Unsent);
    }
    Clear();
}

/// An unusable file is left until something replaces it.
void UnsentTracks::Read() try {
    const auto folder = OpenExistingKeptFolder(copies.Folder());
    const auto content = folder ? ReadKeptFile(*folder, file) : std::nullopt;
    if (!content)
        return;
    names = NamesIn(*content, workspace);
    for (const std::string& name : names)
        LOG_LINE(INFO) << "Saved and not sent by an earlier run: " << name;
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Ignored the list of unsent tracks " << file << " in " << copies.Folder() << ": "
                    << failure.what();
}

void UnsentTracks::Store() try {
    if (!IsEmpty())
        WriteKeptFile(OpenKeptFolder(copies.Folder()), file, Durability::OfPower, [this](const auto& sink) {
            WriteNames(KeptRecordWriter(sink, kMagic, kVersion), workspace, names);
        });
    else if (const auto folder = OpenExistingKeptFolder(copies.Folder()))
        RemoveKeptFile(*folder, file);
} catch (const std::exception& failure) {
    LOG_LINE(ERROR) << "Failed to store the list of unsent tracks in " << copies.Folder() << ": "
                    << failure.what();
}
