#include "HostileArchive.h"

#include "TarBlocks.h"

namespace {

using Leaves = std::map<std::string, std::string>;

constexpr std::size_t kBlock = 512;

std::string Opened(const std::string& name) {
    return "Failed to open file - @/" + name;
}

std::string Created(const std::string& name) {
    return "Failed to create the directory - @/" + name;
}

std::string Read(const std::string& name) {
    return "Failed to read item - " + name;
}

/// The file before each defect: it is kept.
std::string First() {
    return TarFile("first", "1");
}

/// The file after a defect that is skipped.
std::string Last() {
    return TarFile("last", "2") + TarEnd();
}

const Leaves kFirst = {{"first", "1"}};
const Leaves kBoth = {{"first", "1"}, {"last", "2"}};

/// Refused with a message; the entries before it are kept.
HostileArchive Refused(const std::string& name, const std::string& entries, const std::string& message) {
    return {name, First() + entries + Last(), message, kFirst, false};
}

/// Unpacked without the skipped entry or part of an entry.
HostileArchive Unpacked(const std::string& name, const std::string& entries, Leaves more = {}) {
    more.insert(kBoth.begin(), kBoth.end());
    return {name, First() + entries + Last(), "", more, true};
}

/// Ends silently at the damage and is not complete.
HostileArchive Damaged(const std::string& name, const std::string& rest) {
    return {name, First() + rest, "", kFirst, false};
}

std::string Special(const std::string& name, char type) {
    return TarLink(name, type, "");
}

/// An entry whose size field holds these twelve bytes.
std::string WithSizeField(const std::string& name, const std::string& field) {
    std::string blocks = TarFile(name, "data");
    std::string padded = field;
    padded.resize(12, '\0');
    return WithTarChecksum(blocks.replace(124, 12, padded));
}

std::string Sized(const std::string& name, long long size) {
    TarBlockEntry entry;
    entry.name = name;
    entry.content = "data";
    entry.size = size;
    return TarBlocks(entry);
}

/// The old GNU form: one piece of data in a file whose length is in the header.
std::string OldSparse(const std::string& realSizeOctal) {
    TarBlockEntry entry;
    entry.name = "hole";
    entry.type = 'S';
    entry.gnu = true;
    entry.content = "data";
    std::string blocks = TarBlocks(entry);
    const auto put = [&](std::size_t offset, const std::string& digits) {
        blocks.replace(offset, digits.size(), digits);
    };
    put(386, "00000000000");
    put(398, "00000000004");
    put(483, realSizeOctal);
    return WithTarChecksum(blocks);
}

/// The pax form 1.0: the map of the pieces precedes the data.
std::string PaxSparse(const std::string& name, const std::string& realSize, const std::string& map) {
    std::string data = map;
    data.resize((data.size() + kBlock - 1) / kBlock * kBlock, '\0');
    return TarPax(PaxRecord("GNU.sparse.major", "1") + PaxRecord("GNU.sparse.minor", "0") +
                  PaxRecord("GNU.sparse.name", name) + PaxRecord("GNU.sparse.realsize", realSize)) +
           TarFile("GNUSparseFile.0/x", data + "data");
}

std::string Pax(const std::string& key, const std::string& value, const std::string& entry) {
    return TarPax(PaxRecord(key, value)) + entry;
}

std::string Deep(std::size_t levels) {
    std::string name;
    for (std::size_t i = 0; i < levels; ++i)
        name += "d/";
    return name;
}

std::string DeepFolders(std::size_t levels) {
    std::string folders;
    for (std::size_t i = 1; i <= levels; ++i)
        folders += TarGnuLongName(Deep(i)) + TarFolder("d");
    return folders;
}

void AddWaysOut(std::vector<HostileArchive>& archives) {
    const auto file = [&](const std::string& what, const std::string& name) {
        archives.push_back(Refused(what, TarFile(name, "x"), Opened(name)));
    };
    file("absolute-name", "/evil");
    file("absolute-name-with-two-slashes", "//evil");
    file("absolute-name-of-a-working-file", "/tmp/temp.trk");
    file("one-level-up", "../evil");
    file("one-level-up-after-a-dot", "./../evil");
    file("two-levels-up-from-a-folder", "a/../../evil");
    file("up-at-the-end", "a/..");
    file("up-alone", "..");
    file("up-and-back-in", "../out/evil");
    file("up-within-the-target", "a/../b");
    file("ten-levels-up", "../../../../../../../../../../evil");
    file("up-with-doubled-slashes", "..//..//evil");
    file("up-by-backslashes", "..\\evil");
    file("up-by-mixed-slashes", "a\\..\\../evil");
    file("absolute-by-a-backslash", "\\evil");
    file("a-share", "\\\\server\\share\\evil");
    file("a-drive", "C:\\evil");
    file("a-drive-with-slashes", "C:/evil");
    file("a-drive-without-a-slash", "z:evil");
    file("dot-alone", ".");
    file("empty-parts-alone", "././/.");
    const auto folder = [&](const std::string& what, const std::string& name, const std::string& shown) {
        archives.push_back(Refused(what, TarFolder(name), Created(shown)));
    };
    folder("folder-absolute", "/evil", "/evil");
    folder("folder-one-level-up", "../evil", "../evil");
    folder("folder-up-alone", "..", "..");
    folder("folder-up-with-a-slash", "../", "..");
    folder("folder-by-backslashes", "..\\evil", "..\\evil");
    folder("folder-on-a-drive", "D:/evil", "D:/evil");
    TarBlockEntry entry;
    entry.name = "evil";
    entry.prefix = "..";
    archives.push_back(Refused("up-in-the-prefix", TarBlocks(entry), Opened("../evil")));
    entry.prefix = "/";
    entry.name = "evil";
    archives.push_back(Refused("absolute-by-the-prefix", TarBlocks(entry), Opened("/evil")));
    archives.push_back(
        Refused("up-in-a-pax-path", Pax("path", "../evil", TarFile("fine", "x")), Opened("../evil")));
    archives.push_back(
        Refused("absolute-pax-path", Pax("path", "/evil", TarFile("fine", "x")), Opened("/evil")));
    archives.push_back(Refused("up-in-a-long-gnu-name", TarGnuLongName("../evil") + TarFile("fine", "x"),
                               Opened("../evil")));
    archives.push_back(
        Refused("up-in-a-sparse-name", PaxSparse("../evil", "4", "1\n0\n4\n"), Opened("../evil")));
    archives.push_back(Refused("control-characters-on-the-way-up", TarFile("..//\n\x1b[2Jevil", "x"),
                               Opened("..//??[2Jevil")));
}

void AddLinks(std::vector<HostileArchive>& archives) {
    archives.push_back(Unpacked("link-out", TarLink("l", '2', "../canary")));
    archives.push_back(Unpacked("link-to-an-absolute-place", TarLink("l", '2', "/etc/passwd")));
    archives.push_back(Unpacked("link-to-itself", TarLink("l", '2', "l")));
    archives.push_back(Unpacked("link-to-the-target", TarLink("l", '2', ".")));
    archives.push_back(Unpacked("link-without-a-target", TarLink("l", '2', "")));
    archives.push_back(Unpacked("hard-link-out", TarLink("l", '1', "../canary")));
    archives.push_back(Unpacked("hard-link-to-an-absolute-place", TarLink("l", '1', "/etc/passwd")));
    archives.push_back(Unpacked("hard-link-inside", TarLink("l", '1', "first"), {{"l", "1"}}));
    // The link is skipped, so the entry below it goes into a folder of that name.
    archives.push_back(Unpacked("file-through-a-link", TarLink("l", '2', "..") + TarFile("l/evil", "x"),
                                {{"l/", ""}, {"l/evil", "x"}}));
    archives.push_back(Unpacked("folder-in-place-of-a-link",
                                TarLink("l", '2', "..") + TarFolder("l") + TarFile("l/evil", "x"),
                                {{"l/", ""}, {"l/evil", "x"}}));
    archives.push_back(Unpacked("file-in-place-of-a-link", TarLink("l", '2', "../canary") + TarFile("l", "x"),
                                {{"l", "x"}}));
    archives.push_back(
        Unpacked("file-over-a-hard-link", TarLink("l", '1', "../canary") + TarFile("l", "x"), {{"l", "x"}}));
    archives.push_back(Unpacked("chain-of-links",
                                TarLink("a", '2', "..") + TarLink("b", '2', "a") + TarLink("c", '2', "b/..") +
                                    TarFile("c/evil", "x"),
                                {{"c/", ""}, {"c/evil", "x"}}));
    archives.push_back(
        Unpacked("link-with-a-pax-target", Pax("linkpath", "../canary", TarLink("l", '2', "first"))));
    archives.push_back(Unpacked("file-with-a-pax-link-target",
                                Pax("linkpath", "../canary", TarFile("l", "x")), {{"l", "x"}}));
}

void AddSpecials(std::vector<HostileArchive>& archives) {
    archives.push_back(Unpacked("character-device", Special("d", '3')));
    archives.push_back(Unpacked("block-device", Special("d", '4')));
    archives.push_back(Unpacked("fifo", Special("d", '6')));
    archives.push_back(Unpacked("contiguous-file", Special("d", '7'), {{"d", ""}}));
    TarBlockEntry entry;
    entry.name = "s";
    entry.content = "x";
    entry.mode = 06777;
    archives.push_back(Unpacked("set-user-and-group", TarBlocks(entry), {{"s", "x"}}));
    entry.mode = 0;
    archives.push_back(Unpacked("no-permissions", TarBlocks(entry), {{"s", "x"}}));
    entry.mode = 07777777;
    archives.push_back(Unpacked("every-permission-bit", TarBlocks(entry), {{"s", "x"}}));
    TarBlockEntry folder;
    folder.name = "f";
    folder.type = '5';
    folder.mode = 0;
    archives.push_back(Unpacked("folder-without-permissions", TarBlocks(folder) + TarFile("f/x", "x"),
                                {{"f/", ""}, {"f/x", "x"}}));
    folder.mode = 07777;
    archives.push_back(Unpacked("folder-with-sticky-bits", TarBlocks(folder), {{"f/", ""}}));
}

void AddSizes(std::vector<HostileArchive>& archives) {
    archives.push_back(Refused("terabyte-in-octal", WithSizeField("big", "77777777777"), Read("big")));
    archives.push_back(Damaged("eight-exbibytes", Sized("big", 0x7fffffffffffffffLL) + Last()));
    archives.push_back(Refused("a-byte-beyond-the-archive", Sized("big", 5 * 512 + 1), Read("big")));
    archives.push_back(Refused("pax-size-beyond-the-archive",
                               Pax("size", "1099511627776", TarFile("big", "x")), Read("big")));
    archives.push_back(
        Refused("sparse-of-a-terabyte", PaxSparse("hole", "1099511627776", "1\n0\n4\n"), Read("hole")));
    archives.push_back(Refused("old-sparse-of-eight-gigabytes", OldSparse("77777777777"), Read("hole")));
}

void AddNames(std::vector<HostileArchive>& archives) {
    archives.push_back(Unpacked("line-feed-in-a-name", TarFile("a\nb", "x"), {{"a\nb", "x"}}));
    archives.push_back(
        Unpacked("escape-sequence-in-a-name", TarFile("\x1b[31mred", "x"), {{"\x1b[31mred", "x"}}));
    archives.push_back(Unpacked("format-in-a-name", TarFile("%s%n%x", "x"), {{"%s%n%x", "x"}}));
    archives.push_back(Unpacked("name-that-is-no-utf-8", TarFile("\xff\xfe", "x"), {{"\xff\xfe", "x"}}));
    archives.push_back(Unpacked("name-of-blanks", TarFile("   ", "x"), {{"   ", "x"}}));
    archives.push_back(Unpacked("name-like-an-option", TarFile("-rf", "x"), {{"-rf", "x"}}));
    archives.push_back(Unpacked("three-dots", TarFile("...", "x"), {{"...", "x"}}));
    archives.push_back(Unpacked("dots-before-a-name", TarFile("..evil", "x"), {{"..evil", "x"}}));
    archives.push_back(Unpacked("backslash-in-a-name", TarFile("a\\b", "x"), {{"a\\b", "x"}}));
    archives.push_back(Unpacked("dot-before-a-name", TarFile("./a", "x"), {{"a", "x"}}));
    archives.push_back(
        Unpacked("doubled-slashes", TarFolder("a") + TarFile("a//b", "x"), {{"a/", ""}, {"a/b", "x"}}));
    archives.push_back(
        Unpacked("the-same-file-twice", TarFile("a", "longer") + TarFile("a", "x"), {{"a", "x"}}));
    archives.push_back(Unpacked("the-same-folder-twice", TarFolder("a") + TarFolder("a"), {{"a/", ""}}));
    HostileArchive clash =
        Refused("file-then-a-folder-of-its-name", TarFile("a", "x") + TarFolder("a"), Created("a"));
    clash.leaves["a"] = "x";
    archives.push_back(clash);
    clash = Refused("folder-then-a-file-of-its-name", TarFolder("a") + TarFile("a", "x"), Opened("a"));
    clash.leaves["a/"] = "";
    archives.push_back(clash);
    clash = Refused("file-below-a-file", TarFile("a", "x") + TarFile("a/b", "y"), Created("a/b"));
    clash.leaves["a"] = "x";
    archives.push_back(clash);
    archives.push_back(Refused("two-missing-levels", TarFile("a/b/c", "x"), Created("a/b/c")));
    archives.push_back(Refused("name-of-256-letters",
                               TarGnuLongName(std::string(256, 'n')) + TarFile("n", "x"),
                               Opened(std::string(256, 'n'))));
    archives.push_back(Refused("name-of-512-letters",
                               TarGnuLongName(std::string(512, 'n')) + TarFile("n", "x"),
                               Read(std::string(511, 'n'))));
    archives.push_back(Refused("name-of-100000-letters",
                               TarGnuLongName(std::string(100'000, 'n')) + TarFile("n", "x"),
                               Read(std::string(511, 'n'))));
    HostileArchive deep =
        Refused("sixty-five-nested-folders", DeepFolders(65), Created(Deep(65).substr(0, 129)));
    for (std::size_t level = 1; level <= 64; ++level)
        deep.leaves[Deep(level)] = "";
    archives.push_back(deep);
    archives.push_back(Refused("thousands-of-nested-folders-at-once",
                               TarGnuLongName(Deep(5000)) + TarFolder("d"), Read(Deep(256).substr(0, 511))));
}

void AddDamage(std::vector<HostileArchive>& archives) {
    archives.push_back({"empty-file", "", "", {}, false});
    archives.push_back({"one-byte", "x", "", {}, false});
    archives.push_back({"text", std::string(2000, 't'), "", {}, false});
    archives.push_back({"zeros-alone", TarEnd(), "", {}, true});
    archives.push_back({"one-block-of-zeros", std::string(kBlock, '\0'), "", {}, false});
    TarBlockEntry damaged;
    damaged.name = "s";
    damaged.content = "x";
    damaged.wrongChecksum = true;
    archives.push_back({"first-checksum-wrong", TarBlocks(damaged) + Last(), "", {}, false});
    archives.push_back(Damaged("checksum-wrong", TarBlocks(damaged) + Last()));
    archives.push_back(Damaged("garbage-between-entries", std::string(kBlock, 'g') + Last()));
    archives.push_back(Damaged("no-end-mark", ""));
    archives.push_back(Damaged("half-an-end-mark", std::string(kBlock, '\0')));
    archives.push_back(Damaged("header-cut", TarFile("a", "x").substr(0, 300)));
    HostileArchive cut = Damaged("data-cut", TarFile("a", std::string(1000, 'x')).substr(0, kBlock + 700));
    cut.message = Read("a");
    archives.push_back(cut);
    archives.push_back(
        Damaged("long-name-cut", TarGnuLongName(std::string(300, 'n')).substr(0, kBlock + 100)));
    archives.push_back(Damaged("long-name-without-an-entry", TarGnuLongName("name")));
    archives.push_back(Damaged("long-name-with-a-false-size", [] {
        TarBlockEntry entry;
        entry.name = "././@LongLink";
        entry.type = 'L';
        entry.gnu = true;
        entry.content = "name";
        entry.size = 1LL << 40;
        return TarBlocks(entry);
    }() + Last()));
    archives.push_back(Damaged("pax-header-without-an-entry", TarPax(PaxRecord("path", "name"))));
    archives.push_back(Damaged("pax-record-longer-than-its-header",
                               TarPax(PaxRecord("path", "name", 100)) + TarFile("a", "x") + Last()));
    archives.push_back(Damaged("pax-record-shorter-than-it-is",
                               TarPax(PaxRecord("path", "name", -3)) + TarFile("a", "x") + Last()));
    archives.push_back(
        Damaged("pax-record-without-a-length", TarPax("path=name\n") + TarFile("a", "x") + Last()));
    archives.push_back(
        Damaged("pax-record-of-length-0", TarPax("0 path=name\n") + TarFile("a", "x") + Last()));
}

} // namespace

std::vector<HostileArchive> HostileArchives() {
    std::vector<HostileArchive> archives;
    AddWaysOut(archives);
    AddLinks(archives);
    AddSpecials(archives);
    AddSizes(archives);
    AddNames(archives);
    AddDamage(archives);
    return archives;
}
