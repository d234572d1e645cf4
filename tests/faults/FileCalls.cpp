#include "FileCalls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>

// The only place from which a watched call reaches the kernel: the filter allows it by its address.
asm(R"(
    .text
    .hidden PassedFileCall
    .hidden passedFileCallEnd
    .globl PassedFileCall
    .type PassedFileCall, @function
PassedFileCall:
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
    .globl passedFileCallEnd
passedFileCallEnd:
    ret
    .size PassedFileCall, . - PassedFileCall
)");
extern "C" long PassedFileCall(long number, long a, long b, long c, long d, long e, long f);
extern "C" const char passedFileCallEnd[]; // NOLINT(modernize-avoid-c-arrays): a label

namespace {

/// How a call names what it changes.
enum class Names : std::uint8_t { Path, PathAt, Descriptor, OpenPath, OpenPathAt, ReadPathAt, Closed };

struct Kind {
    long number;
    const char* name;
    Names names;
    int argument; ///< which one names it; the folder's descriptor comes before it for PathAt
    bool writes;  ///< takes bytes
    bool needsRoom;
};

constexpr Kind kChanges[] = {
    {SYS_open, "open", Names::OpenPath, 0, false, true},
    {SYS_creat, "creat", Names::Path, 0, false, true},
    {SYS_openat, "openat", Names::OpenPathAt, 1, false, true},
    {SYS_write, "write", Names::Descriptor, 0, true, true},
    {SYS_pwrite64, "pwrite64", Names::Descriptor, 0, true, true},
    {SYS_writev, "writev", Names::Descriptor, 0, true, true},
    {SYS_pwritev, "pwritev", Names::Descriptor, 0, true, true},
    {SYS_sendfile, "sendfile", Names::Descriptor, 0, false, true},
    {SYS_copy_file_range, "copy_file_range", Names::Descriptor, 2, false, true},
    {SYS_ftruncate, "ftruncate", Names::Descriptor, 0, false, true},
    {SYS_truncate, "truncate", Names::Path, 0, false, true},
    {SYS_fallocate, "fallocate", Names::Descriptor, 0, false, true},
    {SYS_fsync, "fsync", Names::Descriptor, 0, false, false},
    {SYS_fdatasync, "fdatasync", Names::Descriptor, 0, false, false},
    {SYS_close, "close", Names::Closed, 0, false, false},
    {SYS_rename, "rename", Names::Path, 0, false, false},
    {SYS_renameat, "renameat", Names::PathAt, 1, false, false},
    {SYS_renameat2, "renameat2", Names::PathAt, 1, false, false},
    {SYS_link, "link", Names::Path, 0, false, false},
    {SYS_linkat, "linkat", Names::PathAt, 1, false, false},
    {SYS_unlink, "unlink", Names::Path, 0, false, false},
    {SYS_unlinkat, "unlinkat", Names::PathAt, 1, false, false},
    {SYS_rmdir, "rmdir", Names::Path, 0, false, false},
    {SYS_mkdir, "mkdir", Names::Path, 0, false, true},
    {SYS_mkdirat, "mkdirat", Names::PathAt, 1, false, true},
    {SYS_chmod, "chmod", Names::Path, 0, false, false},
    {SYS_fchmod, "fchmod", Names::Descriptor, 0, false, false},
    {SYS_fchmodat, "fchmodat", Names::PathAt, 1, false, false},
};

constexpr Kind kReads[] = {
    {SYS_openat, "open to read", Names::ReadPathAt, 1, false, false},
    {SYS_read, "read", Names::Descriptor, 0, false, false},
    {SYS_pread64, "pread64", Names::Descriptor, 0, false, false},
    {SYS_readv, "readv", Names::Descriptor, 0, false, false},
    {SYS_preadv, "preadv", Names::Descriptor, 0, false, false},
    {SYS_getdents64, "getdents64", Names::Descriptor, 0, false, false},
};

struct Call {
    long number;
    std::array<long, 6> arguments;
};

constexpr std::size_t kMaxPath = 4096;

FileCallReport* report = nullptr;
std::span<const Kind> kinds;
std::array<char, kMaxPath> root{};

long Pass(const Call& call) {
    const auto& a = call.arguments;
    return PassedFileCall(call.number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

/// The path of a descriptor or of the working folder.
struct Place {
    std::array<char, kMaxPath> path{};

    explicit Place(int descriptor) {
        std::array<char, 40> link{};
        if (descriptor == AT_FDCWD)
            std::strcpy(link.data(), "/proc/self/cwd");
        else
            Number(link.data(), descriptor);
        const long size = PassedFileCall(SYS_readlink, reinterpret_cast<long>(link.data()),
                                         reinterpret_cast<long>(path.data()), kMaxPath - 1, 0, 0, 0);
        path[static_cast<std::size_t>(std::max(size, 0L))] = '\0';
    }

  private:
    static void Number(char* link, int descriptor) {
        std::strcpy(link, "/proc/self/fd/");
        std::array<char, 12> digits{};
        std::size_t count = 0;
        for (auto left = static_cast<unsigned>(descriptor); count == 0 || left != 0; left /= 10)
            digits[count++] = static_cast<char>('0' + left % 10);
        char* end = link + std::strlen(link);
        while (count > 0)
            *end++ = digits[--count];
        *end = '\0';
    }
};

bool IsBelowRoot(const char* path) {
    const std::size_t size = std::strlen(root.data());
    return std::strncmp(path, root.data(), size) == 0 && (path[size] == '/' || path[size] == '\0');
}

const char* PathOf(const Kind& kind, const Call& call) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a system call's arguments are numbers
    return reinterpret_cast<const char*>(call.arguments[static_cast<std::size_t>(kind.argument)]);
}

int DescriptorOf(const Kind& kind, const Call& call) {
    return static_cast<int>(call.arguments[static_cast<std::size_t>(kind.argument)]);
}

bool OpensToChange(long flags) {
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

/// The name of the file that a call changes; null when it is not one of the watched files.
const char* Changed(const Kind& kind, const Call& call, const Place& place) {
    const auto& a = call.arguments;
    switch (kind.names) {
    case Names::Closed:
        if ((PassedFileCall(SYS_fcntl, a[0], F_GETFL, 0, 0, 0, 0) & O_ACCMODE) == O_RDONLY)
            return nullptr;
        [[fallthrough]];
    case Names::Descriptor:
        return IsBelowRoot(place.path.data()) ? place.path.data() : nullptr;
    case Names::OpenPath:
        if (!OpensToChange(a[1]))
            return nullptr;
        break;
    case Names::OpenPathAt:
        if (!OpensToChange(a[2]))
            return nullptr;
        break;
    case Names::ReadPathAt:
        if (OpensToChange(a[2]))
            return nullptr;
        break;
    case Names::Path:
    case Names::PathAt:
        break;
    }
    const char* const path = PathOf(kind, call);
    if (path == nullptr)
        return nullptr;
    return IsBelowRoot(path[0] == '/' ? path : place.path.data()) ? path : nullptr;
}

int PlaceDescriptor(const Kind& kind, const Call& call) {
    switch (kind.names) {
    case Names::Path:
    case Names::OpenPath:
        return AT_FDCWD;
    case Names::PathAt:
    case Names::OpenPathAt:
    case Names::ReadPathAt:
        return static_cast<int>(call.arguments[static_cast<std::size_t>(kind.argument) - 1]);
    case Names::Descriptor:
    case Names::Closed:
        break;
    }
    return DescriptorOf(kind, call);
}

template<std::size_t kRoom>
void Copy(const char* text, std::array<char, kRoom>& target) {
    const std::size_t size = std::min(std::strlen(text), kRoom - 1);
    std::memcpy(target.data(), text, size);
    target[size] = '\0';
}

/// A nameless file is counted under a name of its own.
bool OpensNameless(const Kind& kind, const Call& call) {
    return kind.names == Names::OpenPathAt && (call.arguments[2] & O_TMPFILE) == O_TMPFILE;
}

void Record(long count, const Kind& kind, const Call& made, const char* path) {
    if (count > FileCallReport::kMaxCalls)
        return;
    FileCall& call = report->calls[static_cast<std::size_t>(count) - 1];
    call.number = kind.number;
    call.size = kind.names == Names::Descriptor ? made.arguments[2] : 0;
    Copy(OpensNameless(kind, made) ? "open nameless" : kind.name, call.name);
    const char* const slash = std::strrchr(path, '/');
    Copy(slash == nullptr ? path : slash + 1, call.place);
}

/// Performs half of a write. @return the kernel's result; 0 when the write is too small to be halved
long WriteHalf(const Call& call) {
    std::array<long, 6> a = call.arguments;
    long number = call.number;
    if (number == SYS_writev || number == SYS_pwritev) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): as above
        const auto* const pieces = reinterpret_cast<const iovec*>(a[1]);
        number = number == SYS_writev ? SYS_write : SYS_pwrite64;
        a[1] = reinterpret_cast<long>(pieces->iov_base);
        a[2] = static_cast<long>(pieces->iov_len);
    }
    a[2] /= 2;
    return a[2] == 0 ? 0 : Pass({number, a});
}

[[noreturn]] void KillSelf() {
    const long self = PassedFileCall(SYS_getpid, 0, 0, 0, 0, 0, 0);
    for (;;)
        PassedFileCall(SYS_kill, self, SIGKILL, 0, 0, 0, 0);
}

/// Makes a call fail; a descriptor is closed anyway, as by the kernel.
long Fail(const Kind& kind, const Call& call, int error) {
    if (kind.names == Names::Closed)
        Pass(call);
    report->injected = true;
    return -error;
}

long FailInPart(const Kind& kind, const Call& call) {
    const long written = kind.writes ? WriteHalf(call) : 0;
    if (written <= 0)
        return Pass(call);
    report->injected = true;
    if (report->fault == Fault::TornKill)
        KillSelf();
    return written;
}

bool IsExchange(const Call& call) {
    return call.number == SYS_renameat2 && (call.arguments[4] & RENAME_EXCHANGE) != 0;
}

long FailNow(const Kind& kind, const Call& call) {
    switch (report->fault) {
    case Fault::NoSpace:
        return Fail(kind, call, ENOSPC);
    case Fault::Quota:
        return Fail(kind, call, EDQUOT);
    case Fault::InputOutput:
    case Fault::DiskDead:
        return Fail(kind, call, EIO);
    case Fault::Kill:
        report->injected = true;
        KillSelf();
    case Fault::DiskFull:
        return kind.needsRoom ? Fail(kind, call, ENOSPC) : Pass(call);
    case Fault::Short:
    case Fault::ShortFull:
    case Fault::TornKill:
        return FailInPart(kind, call);
    case Fault::None:
        break;
    }
    return Pass(call);
}

long FailLater(const Kind& kind, const Call& call) {
    if (report->fault == Fault::DiskDead)
        return Fail(kind, call, EIO);
    const bool full =
        report->fault == Fault::DiskFull || (report->fault == Fault::ShortFull && report->injected);
    return full && kind.needsRoom ? Fail(kind, call, ENOSPC) : Pass(call);
}

long Answer(const Call& call) {
    const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const Kind& each) { return each.number == call.number; });
    if (report->noExchange && IsExchange(call))
        return -EINVAL;
    if (kind == kinds.end() || !report->armed)
        return Pass(call);
    const Place place(PlaceDescriptor(*kind, call));
    const char* const path = Changed(*kind, call, place);
    if (path == nullptr)
        return Pass(call);
    const long count = ++report->count;
    Record(count, *kind, call, path);
    if (count == report->at)
        return FailNow(*kind, call);
    return count > report->at && report->at > 0 ? FailLater(*kind, call) : Pass(call);
}

/// Runs in a signal handler within the call, on the calling thread: it may use only the kernel and the stack.
void OnCall(int /*signal*/, siginfo_t* info, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const Call call{info->si_syscall,
                    {static_cast<long>(registers[REG_RDI]), static_cast<long>(registers[REG_RSI]),
                     static_cast<long>(registers[REG_RDX]), static_cast<long>(registers[REG_R10]),
                     static_cast<long>(registers[REG_R8]), static_cast<long>(registers[REG_R9])}};
    registers[REG_RAX] = Answer(call);
}

sock_filter Load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

sock_filter JumpIfEqual(std::uint32_t value, std::size_t yes, std::size_t no) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, static_cast<std::uint8_t>(yes),
                    static_cast<std::uint8_t>(no));
}

sock_filter Return(std::uint32_t action) {
    return BPF_STMT(BPF_RET | BPF_K, action);
}

/// Traps the calls of the table, except those from PassedFileCall.
bool InstallFilter() {
    const std::size_t count = kinds.size();
    constexpr std::size_t kAddress = offsetof(seccomp_data, instruction_pointer);
    const auto passed = reinterpret_cast<std::uintptr_t>(&passedFileCallEnd[0]);
    std::array<sock_filter, std::size(kChanges) + 10> filter{};
    std::size_t size = 0;
    filter[size++] = Load(offsetof(seccomp_data, arch));
    filter[size++] = JumpIfEqual(AUDIT_ARCH_X86_64, 0, count + 1);
    filter[size++] = Load(offsetof(seccomp_data, nr));
    for (std::size_t i = 0; i < count; ++i)
        filter[size++] = JumpIfEqual(static_cast<std::uint32_t>(kinds[i].number), count - i, 0);
    filter[size++] = Return(SECCOMP_RET_ALLOW);
    filter[size++] = Load(kAddress);
    filter[size++] = JumpIfEqual(static_cast<std::uint32_t>(passed), 0, 3);
    filter[size++] = Load(kAddress + 4);
    filter[size++] = JumpIfEqual(static_cast<std::uint32_t>(passed >> 32U), 0, 1);
    filter[size++] = Return(SECCOMP_RET_ALLOW);
    filter[size++] = Return(SECCOMP_RET_TRAP);
    const sock_fprog program{static_cast<unsigned short>(size), filter.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
}

} // namespace

FileCallReport* MapReport(const char* path) {
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0)
        return nullptr;
    const bool fresh = lseek(file, 0, SEEK_END) == 0;
    void* memory = MAP_FAILED;
    if (ftruncate(file, sizeof(FileCallReport)) == 0)
        memory = mmap(nullptr, sizeof(FileCallReport), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED)
        return nullptr;
    return fresh ? new (memory) FileCallReport : static_cast<FileCallReport*>(memory);
}

bool WatchFileCalls(const char* path, FileCallReport* shared) {
    if (std::strlen(path) >= kMaxPath)
        return false;
    std::strcpy(root.data(), path);
    report = shared;
    kinds = shared->reads ? std::span<const Kind>(kReads) : std::span<const Kind>(kChanges);
    struct sigaction action {};
    action.sa_sigaction = &OnCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    return sigaction(SIGSYS, &action, nullptr) == 0 && InstallFilter();
}
