#include "hostile/attacks/sealed_process.h"

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Saml::Attacks::Sealed {
namespace {

#if defined(__x86_64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_AARCH64;
#else
constexpr unsigned kArchitecture = 0;
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif
#else
constexpr bool kIsSanitized = false;
#endif

// Nothing here takes a path, an address or a descriptor that could be written to. Memory cannot be
// mapped from a file without one being open.
constexpr unsigned kAllowed[] = {
    __NR_brk,           __NR_mmap,         __NR_munmap,         __NR_mremap,
    __NR_mprotect,      __NR_madvise,      __NR_futex,          __NR_getrandom,
    __NR_clock_gettime, __NR_gettimeofday, __NR_rt_sigprocmask, __NR_rt_sigreturn,
    __NR_getpid,        __NR_gettid,       __NR_sched_yield,    __NR_exit,
    __NR_exit_group,
};

/// What the child tells its parent; shared memory, since the child can write nowhere else.
struct Report {
    volatile bool wasSealed;
    volatile long refusedCall;
};
Report* report = nullptr;

void NoteRefusal(int, siginfo_t* information, void*) {
    report->refusedCall = information->si_syscall;
    _exit(EXIT_FAILURE);
}

std::vector<sock_filter> Filter() {
    std::vector<sock_filter> filter = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    };
    for (const unsigned call : kAllowed) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP));
    return filter;
}

bool PutSealOn() {
    struct sigaction action = {};
    action.sa_sigaction = NoteRefusal;
    action.sa_flags = SA_SIGINFO;
    std::vector<sock_filter> filter = Filter();
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return sigaction(SIGSYS, &action, nullptr) == 0 &&
           prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

[[noreturn]] void RunChild(const std::function<void()>& prepare,
                           const std::function<int()>& compute) {
    int code = EXIT_FAILURE;
    try {
        prepare();
        report->wasSealed = PutSealOn();
        if (report->wasSealed) code = compute();
    } catch (...) {
        code = EXIT_FAILURE;
    }
    _exit(code);  // no handler of the parent's runs a second time
}

}  // namespace

std::optional<std::string> WhyNot() {
    if (kArchitecture == 0) return "the numbers of this processor's system calls are not known";
    if (kIsSanitized) return "a sanitizer makes system calls of its own";
    const char* const preloaded = std::getenv("LD_PRELOAD");
    if (preloaded != nullptr && std::string(preloaded).find("vgpreload") != std::string::npos)
        return "valgrind makes system calls of its own";
    return std::nullopt;
}

std::string Ending::Told() const {
    if (!wasSealed) return "not sealed";
    if (refusedCall >= 0) return "stopped at system call " + std::to_string(refusedCall);
    return "exit " + std::to_string(exitCode);
}

Ending Run(const std::function<void()>& prepare, const std::function<int()>& compute) {
    void* const memory =
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no shared memory");
    report = new (memory) Report{false, -1};

    const pid_t child = fork();
    if (child == 0) RunChild(prepare, compute);
    int status = 0;
    const bool hasEnded = child > 0 && waitpid(child, &status, 0) == child;
    Ending ending;
    ending.wasSealed = report->wasSealed;
    ending.refusedCall = report->refusedCall;
    munmap(memory, sizeof(Report));
    if (!hasEnded) throw std::runtime_error("no child process");
    if (WIFEXITED(status)) ending.exitCode = WEXITSTATUS(status);
    return ending;
}

}  // namespace Saml::Attacks::Sealed
