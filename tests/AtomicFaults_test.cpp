// AtomicFaults_test.cpp -- tests AtomicFile.cpp: a save that is killed, or that the system refuses, at any of its steps
#include "platform/AtomicFile.h"

#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

static bool bFoldersFailToFlush = false;

// Takes the place of the system's, which the other tests get to all the same.
extern "C" int fsync(int fd)
{
    struct stat st;
    if (bFoldersFailToFlush && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, fd));
}

namespace {

const std::string OLD(3000, 'o');
const std::string NEW(90000, 'n');

class AtomicFaults : public ::testing::TestWithParam<bool> {
  protected:
    TempFolder folder;
    fs::path file = folder / "A.VD";

    void SetUp() override
    {
        SetSaveFolder(GetParam() ? folder.Wide(".saving") : u"");
        Restore();
    }
    void TearDown() override
    {
        SetSaveFolder(u"");
    }
    // What a killed save left is gone too: each one looks through it for what is old.
    void Restore()
    {
        fs::remove_all(folder);
        folder.Write("A.VD", OLD);
    }
    std::string Contents() const
    {
        return folder.Read("A.VD");
    }
    [[noreturn]] void SaveAndEnd() const
    {
        const u32 bSaved = SaveFileAtomically(FromUtf8(file.string()), NEW);
        _exit(bSaved ? 0 : 1);
    }
};

INSTANTIATE_TEST_SUITE_P(WithAndWithoutAFolder, AtomicFaults, ::testing::Bool());

// Lets the stopped child pass nStops entries to and exits from the system, then kills it. False: it had ended before.
bool KillAfter(pid_t pid, int nStops)
{
    int nStatus = 0;
    waitpid(pid, &nStatus, 0);
    for (int i = 0; i < nStops && WIFSTOPPED(nStatus); i++) {
        ptrace(PTRACE_SYSCALL, pid, nullptr, nullptr);
        waitpid(pid, &nStatus, 0);
    }
    if (!WIFSTOPPED(nStatus))
        return false;
    kill(pid, SIGKILL);
    waitpid(pid, &nStatus, 0);
    return true;
}

// From now on the system answers this call of the process with the error.
bool Refuse(long nCall, int nError)
{
    sock_filter aFilter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<u32>(nCall), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<u32>(nError)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {static_cast<unsigned short>(std::size(aFilter)), aFilter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace

TEST_P(AtomicFaults, AProcessKilledAtAnyMomentLeavesTheOldFileOrTheNewOne)
{
    bool bOld = false, bNew = false;
    for (int n = 1; n < 1000; n++) {
        Restore();
        const pid_t pid = fork();
        if (pid == 0) {
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
                _exit(2);
            raise(SIGSTOP);
            SaveAndEnd();
        }
        if (!KillAfter(pid, n)) {
            if (n == 1)
                GTEST_SKIP() << "processes cannot be traced here";
            EXPECT_GT(n, 20);
            EXPECT_TRUE(bOld && bNew);
            return;
        }
        const std::string s = Contents();
        ASSERT_TRUE(s == OLD || s == NEW) << "killed at stop " << n << ": " << s.size() << " bytes";
        (s == OLD ? bOld : bNew) = true;
    }
    FAIL() << "the save never ends";
}

TEST_P(AtomicFaults, AStepThatTheSystemRefusesLeavesTheOldFileAndFails)
{
#ifdef SYS_rename
    const long aRename[] = {SYS_rename, SYS_renameat, SYS_renameat2};
#else
    const long aRename[] = {SYS_renameat, SYS_renameat2};
#endif
    for (int nError : {ENOSPC, EIO, EDQUOT, EROFS})
        for (const std::vector<long> &calls :
             {std::vector<long>{SYS_write}, {SYS_fsync}, {SYS_openat}, {std::begin(aRename), std::end(aRename)}}) {
            const pid_t pid = fork();
            if (pid == 0) {
                for (long nCall : calls)
                    if (!Refuse(nCall, nError))
                        _exit(2);
                SaveAndEnd();
            }
            int nStatus = 0;
            waitpid(pid, &nStatus, 0);
            ASSERT_TRUE(WIFEXITED(nStatus));
            EXPECT_EQ(WEXITSTATUS(nStatus), 1) << "call " << calls[0] << ", error " << nError;
            EXPECT_EQ(Contents(), OLD);
        }
}

TEST_P(AtomicFaults, AFolderThatFailsToFlushIsToldAsWhatItIs)
{
    bFoldersFailToFlush = true;
    std::string sWhy;
    EXPECT_EQ(0u, SaveFileAtomically(FromUtf8(file.string()), NEW, &sWhy));
    bFoldersFailToFlush = false;
    EXPECT_EQ(NEW, Contents());
    EXPECT_NE(std::string::npos, sWhy.find("has the new contents")) << sWhy;
    EXPECT_EQ(std::string::npos, sWhy.find("as it was")) << sWhy;
}
