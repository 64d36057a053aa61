// Status, error modes, the three report functions, allocation, version.
#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "test_util.hpp"

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using vektest::ReportRecorder;

namespace {

TEST(ErrorStr, EveryCodeAndUnknownValues) {
    const struct {
        int status;
        const char* text;
    } cases[] = {
        {0, "No Error"},
        {-1, "Backtrace"},
        {-2, "Unknown error or status code"},
        {-3, "Internal error (bad state)"},
        {-4, "Out of memory"},
        {-5, "Bad argument"},
        {-6, "Unsupported function"},
        {-7, "Iteration convergence failed"},
        {-8, "Autotrace call"},
        {-9, "Unknown error or status code"},
        {-12, "Unknown error or status code"},
        {1, "Unknown error or status code"},
        {INT32_MIN, "Unknown error or status code"},
    };
    for (const auto& c : cases) EXPECT_STREQ(vekErrorStr(c.status), c.text) << c.status;
}

TEST(Error, StoresStatusAndCallsTheReportFunction) {
    ReportRecorder rec;
    EXPECT_EQ(vekError(-5, "f", "n<=0", "mod", 7), -5);
    EXPECT_EQ(vekGetErrStatus(), -5);
    ASSERT_EQ(rec.size(), 1u);
    EXPECT_EQ(rec[0].status, -5);
    EXPECT_EQ(rec[0].func, "f");
    EXPECT_EQ(rec[0].context, "n<=0");
    EXPECT_EQ(rec[0].file, "mod");
    EXPECT_EQ(rec[0].line, 7);

    // Traces are reported but not stored: the first failure stays.
    EXPECT_EQ(vekError(-1, "g", nullptr, "mod2", 9), -1);
    EXPECT_EQ(vekError(-8, "h", "x", nullptr, 0), -8);
    EXPECT_EQ(vekGetErrStatus(), -5);
    EXPECT_EQ(rec.size(), 3u);

    // Positive statuses are stored and reported like failures.
    EXPECT_EQ(vekError(3, "p", nullptr, nullptr, 0), 3);
    EXPECT_EQ(vekGetErrStatus(), 3);
    EXPECT_EQ(rec.size(), 4u);

    // Status 0 is stored without a report.
    EXPECT_EQ(vekError(0, "z", "c", "m", 1), 0);
    EXPECT_EQ(vekGetErrStatus(), 0);
    EXPECT_EQ(rec.size(), 4u);
}

TEST(Error, StatusIsStickyUntilCleared) {
    ReportRecorder rec;
    vekError(-4, "f", "NULL Pointer", "m", 1);
    void* p = vekMalloc(16);  // a successful call leaves the status alone
    vekFree(p);
    EXPECT_EQ(vekGetErrStatus(), -4);
    vekSetErrStatus(0);
    EXPECT_EQ(vekGetErrStatus(), 0);
    EXPECT_EQ(rec.size(), 1u);  // setting the status reports nothing
}

TEST(Error, ModeIsStoredUnchecked) {
    for (int mode : {1, 2, 0, 7, -3}) {
        vekSetErrMode(mode);
        EXPECT_EQ(vekGetErrMode(), mode);
    }
    vekSetErrMode(VEK_ErrorModeLeaf);
}

int custom(int status, const char*, const char*, const char*, int) { return status; }

TEST(Error, RedirectReturnsPreviousAndNullRestoresTheBox) {
    ErrorReportFunc before = vekRedirectError(custom);
    EXPECT_EQ(vekRedirectError(vekStdErrReport), custom);
    EXPECT_EQ(vekRedirectError(nullptr), vekStdErrReport);
    EXPECT_EQ(vekRedirectError(before), vekGuiBoxReport);
}

struct ConsoleCase {
    int status;
    const char* func;
    const char* context;
    const char* file;
    int line;
    const char* text;
};

TEST(StdErrReport, ByteExactTextsInParentMode) {
    const ConsoleCase cases[] = {
        {-5, "veksbZero", "n<=0", "vekarith", 42,
         "\nKOR Library Error: Bad argument \n\tin function [vekarith:42]:veksbZero(): n<=0\n"},
        {-1, "vekcConv", nullptr, "vekconvs", 310, "\tcalled from [vekconvs:310]:vekcConv\n"},
        {-1, "vekvFftNip", "out vekvFft", "vekfftw", 5,
         "\tcalled from [vekfftw:5]:vekvFftNip(): out vekvFft\n"},
        {-8, "trace", "x=1", "app", 3, "\tcalled from [app:3]:trace(x=1)\n"},
        {-8, "trace", nullptr, nullptr, 0, "\tcalled from:trace\n"},
        {12, "mine", "positive", "app", 1,
         "\nKOR Library Error: Unknown error or status code \n\tin function [app:1]:mine(): "
         "positive\n"},
        {-4, nullptr, nullptr, nullptr, 0,
         "\nKOR Library Error: Out of memory \n\tin function:<unknown>\n"},
        {-5, "f", "c", "m", -7,
         "\nKOR Library Error: Bad argument \n\tin function [m:-7]:f(): c\n"},
        {-5, "f", "c", nullptr, 9,
         "\nKOR Library Error: Bad argument \n\tin function [(null):9]:f(): c\n"},
        {-5, "f", "", nullptr, 0, "\nKOR Library Error: Bad argument \n\tin function:f(): \n"},
    };
    vekSetErrMode(VEK_ErrorModeParent);
    for (const ConsoleCase& c : cases) {
        CaptureStderr();
        const int got = vekStdErrReport(c.status, c.func, c.context, c.file, c.line);
        EXPECT_EQ(GetCapturedStderr(), c.text);
        EXPECT_EQ(got, c.status);
    }
    vekSetErrMode(VEK_ErrorModeLeaf);
}

TEST(StdErrReport, SilentPrintsNothingButTheStatusIsKept) {
    vekSetErrMode(VEK_ErrorModeSilent);
    ErrorReportFunc before = vekRedirectError(vekStdErrReport);
    CaptureStderr();
    EXPECT_EQ(vekError(-5, "f", "c", "m", 1), -5);
    EXPECT_EQ(vekNulDevReport(-5, "f", "c", "m", 1), -5);
    EXPECT_EQ(vekGuiBoxReport(-5, "f", "c", "m", 1), -5);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(vekGetErrStatus(), -5);
    vekRedirectError(before);
    vekSetErrMode(VEK_ErrorModeLeaf);
    vekSetErrStatus(0);
}

TEST(NulDevReport, ReturnsInParentAndOtherModes) {
    for (int mode : {1, 2, 5}) {
        vekSetErrMode(mode);
        EXPECT_EQ(vekNulDevReport(-5, "f", "c", "m", 1), -5);
        EXPECT_EQ(vekGuiBoxReport(-5, "f", "c", "m", 1), -5) << "no box without a terminal";
    }
    vekSetErrMode(VEK_ErrorModeLeaf);
}

TEST(ThreadState, EachThreadHasItsOwnModeStatusAndReportFunction) {
    vekSetErrMode(VEK_ErrorModeSilent);
    vekSetErrStatus(-7);
    ErrorReportFunc mine = vekRedirectError(custom);

    int mode = -1, status = -1;
    ErrorReportFunc fn = nullptr;
    std::thread t([&] {
        // A fresh thread starts in Leaf mode, status 0, with the box.
        mode = vekGetErrMode();
        status = vekGetErrStatus();
        fn = vekRedirectError(vekStdErrReport);
        vekSetErrMode(VEK_ErrorModeParent);
        vekSetErrStatus(-4);
    });
    t.join();
    EXPECT_EQ(mode, VEK_ErrorModeLeaf);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(fn, vekGuiBoxReport);

    EXPECT_EQ(vekGetErrMode(), VEK_ErrorModeSilent);
    EXPECT_EQ(vekGetErrStatus(), -7);
    EXPECT_EQ(vekRedirectError(mine), custom);
    vekSetErrMode(VEK_ErrorModeLeaf);
    vekSetErrStatus(0);
}

TEST(ThreadState, ManyShortLivedThreadsEachGetARecord) {
    // Records are released at thread exit; the sanitizer build would see a leak.
    for (int round = 0; round < 4; ++round) {
        std::thread ts[8];
        for (auto& t : ts)
            t = std::thread([] {
                EXPECT_EQ(vekGetErrStatus(), 0);
                vekSetErrStatus(-5);
            });
        for (auto& t : ts) t.join();
    }
}

// ---------------------------------------------------------------- termination

using ReportFn = int (*)(int, const char*, const char*, const char*, int);

TEST(TerminationDeathTest, ConsoleReportInLeafExitsWithCode1) {
    EXPECT_EXIT(vekStdErrReport(-5, "veksbZero", "n<=0", "vekarith", 42),
                testing::ExitedWithCode(1),
                "^\nKOR Library Error: Bad argument \n\tin function \\[vekarith:42\\]:"
                "veksbZero\\(\\): n<=0\nKOR Library Error\nErrMode=VEK_ErrModeLeaf\n"
                "terminating the application$");
}

TEST(TerminationDeathTest, ThroughVekErrorWithTheConsoleReport) {
    EXPECT_EXIT(
        {
            vekRedirectError(vekStdErrReport);
            vekError(-1, "caller", nullptr, "mod", 3);
        },
        testing::ExitedWithCode(1),
        "^\tcalled from \\[mod:3\\]:caller\nKOR Library Error\nErrMode=VEK_ErrModeLeaf\n"
        "terminating the application$");
}

TEST(TerminationDeathTest, NullReportInLeafExitsSilently) {
    EXPECT_EXIT(vekNulDevReport(-5, "f", "c", "m", 1), testing::ExitedWithCode(1), "^$");
}

TEST(TerminationDeathTest, BoxWithoutTerminalTerminatesInLeaf) {
    // A new session has no controlling terminal: Leaf's answer is to end.
    EXPECT_EXIT(
        {
            setsid();
            vekGuiBoxReport(-5, "f", "c", "m", 1);
        },
        testing::ExitedWithCode(3), "^KOR Library:\nterminating the application\n$");
}

// Runs the box report in a child whose controlling terminal is a pty,
// answers its question and returns what the terminal showed.
struct BoxRun {
    std::string screen;
    int exit_code;
};

BoxRun run_box(int mode, int stored, int status, const char* func, const char* context,
               const char* file, int line, const char* answer) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return {"no pty", -1};
    const std::string slave_name = ptsname(master);
    const pid_t pid = fork();
    if (pid == 0) {
        setsid();
        const int slave = open(slave_name.c_str(), O_RDWR);  // becomes the terminal
        termios tio;
        tcgetattr(slave, &tio);
        tio.c_lflag &= ~tcflag_t(ECHO);
        tio.c_oflag &= ~tcflag_t(OPOST);
        tcsetattr(slave, TCSANOW, &tio);
        dup2(slave, 2);
        vekSetErrMode(mode);
        vekSetErrStatus(stored);
        vekGuiBoxReport(status, func, context, file, line);
        _exit(0);
    }
    std::string screen;
    size_t answered_at = 0;  // every new prompt gets the answer
    char buf[512];
    for (;;) {
        const ssize_t n = read(master, buf, sizeof buf);
        if (n <= 0) break;  // EIO once the child has closed the terminal
        screen.append(buf, size_t(n));
        if (screen.size() > answered_at && screen.compare(screen.size() - 2, 2, "] ") == 0) {
            const std::string line_in = std::string(answer) + "\n";
            if (write(master, line_in.data(), line_in.size()) < 0) break;
            answered_at = screen.size();
        }
    }
    int wstatus = 0;
    waitpid(pid, &wstatus, 0);
    close(master);
    return {screen, WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1};
}

TEST(GuiBoxReport, AsksOnTheTerminalAndActsOnTheAnswer) {
    const char* leafText =
        "\n*** KOR Library Error: Bad argument ***\n"
        "in function [vekarith:12]:veksbZero():\n n<=0\n\nErrMode=VEK_ErrorModeLeaf\n\n"
        "Terminate the application?\n[Yes/No] ";
    BoxRun no = run_box(0, -5, -5, "veksbZero", "n<=0", "vekarith", 12, "no");
    EXPECT_EQ(no.exit_code, 0);
    EXPECT_EQ(no.screen, leafText);

    BoxRun yes = run_box(0, -5, -5, "veksbZero", "n<=0", "vekarith", 12, "y");
    EXPECT_EQ(yes.exit_code, 3);
    EXPECT_EQ(yes.screen, std::string(leafText) + "KOR Library:\nterminating the application\n");

    // Parent: OK continues, Cancel ends; the title names the stored status.
    const char* parentText =
        "\n*** KOR Library Error: Bad argument ***\n"
        "called from [vekffts:0]:vekcFft():\n out\n\nErrMode=VEK_ErrorModeParent\n\n"
        "Continue?\n[OK/Cancel] ";
    BoxRun ok = run_box(1, -5, -1, "vekcFft", "out", "vekffts", -4, "OK");
    EXPECT_EQ(ok.exit_code, 0);
    EXPECT_EQ(ok.screen, parentText);
    BoxRun cancel = run_box(1, -5, -1, "vekcFft", "out", "vekffts", -4, "cancel");
    EXPECT_EQ(cancel.exit_code, 3);

    // An unknown answer asks again, five times, then takes Parent's answer.
    BoxRun again = run_box(1, -5, -8, nullptr, nullptr, nullptr, 0, "maybe");
    EXPECT_EQ(again.exit_code, 0);
    std::string asks;
    for (int i = 0; i < 5; ++i) asks += "[OK/Cancel] ";
    EXPECT_EQ(again.screen,
              "\n*** KOR Library Error: Bad argument ***\ncalled from [:0]:\n <unknown>()\n\n"
              "ErrMode=VEK_ErrorModeParent\n\nContinue?\n" +
                  asks);
}

TEST(GuiBoxReport, TextIsCutTo199Characters) {
    const std::string longContext(300, 'x');
    BoxRun run = run_box(1, -5, -5, "f", longContext.c_str(), "m", 1, "ok");
    const std::string head = "\n*** KOR Library Error: Bad argument ***\n";
    ASSERT_EQ(run.screen.compare(0, head.size(), head), 0);
    const std::string text = run.screen.substr(head.size());
    const std::string want = ("in function [m:1]:f():\n " + longContext).substr(0, 199) + "\n";
    EXPECT_EQ(text.substr(0, want.size()), want);
    EXPECT_EQ(text.substr(want.size()), "[OK/Cancel] ");
}

// ---------------------------------------------------------------- memory

TEST(Malloc, EveryAllocatorAlignsEveryLength) {
    struct Alloc {
        const char* name;
        void* (*fn)(int);
        size_t elem;
    };
    const Alloc allocs[] = {
        {"vekMalloc", [](int n) { return vekMalloc(n); }, 1},
        {"vekwMalloc", [](int n) { return static_cast<void*>(vekwMalloc(n)); }, 2},
        {"veksMalloc", [](int n) { return static_cast<void*>(veksMalloc(n)); }, 4},
        {"vekiMalloc", [](int n) { return static_cast<void*>(vekiMalloc(n)); }, 4},
        {"vekvMalloc", [](int n) { return static_cast<void*>(vekvMalloc(n)); }, 4},
        {"vekdMalloc", [](int n) { return static_cast<void*>(vekdMalloc(n)); }, 8},
        {"vekcMalloc", [](int n) { return static_cast<void*>(vekcMalloc(n)); }, 8},
        {"vekjMalloc", [](int n) { return static_cast<void*>(vekjMalloc(n)); }, 8},
        {"vekzMalloc", [](int n) { return static_cast<void*>(vekzMalloc(n)); }, 16},
    };
    for (const Alloc& a : allocs) {
        for (int n = 0; n <= 300; ++n) {
            void* p = a.fn(n);
            ASSERT_NE(p, nullptr) << a.name << " " << n;
            EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u) << a.name << " " << n;
            std::memset(p, 0xa5, n * a.elem);  // the whole block is usable
            vekFree(p);
        }
        const int big = (64 << 20) / int(a.elem);
        void* p = a.fn(big);
        ASSERT_NE(p, nullptr) << a.name;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u) << a.name;
        static_cast<char*>(p)[size_t(big) * a.elem - 1] = 1;
        vekFree(p);
    }
    vekFree(nullptr);
}

TEST(Malloc, OneFunctionPerElementSize) {
    EXPECT_EQ(reinterpret_cast<void*>(veksMalloc), reinterpret_cast<void*>(vekiMalloc));
    EXPECT_EQ(reinterpret_cast<void*>(veksMalloc), reinterpret_cast<void*>(vekvMalloc));
    EXPECT_EQ(reinterpret_cast<void*>(vekdMalloc), reinterpret_cast<void*>(vekcMalloc));
    EXPECT_EQ(reinterpret_cast<void*>(vekdMalloc), reinterpret_cast<void*>(vekjMalloc));
    EXPECT_NE(reinterpret_cast<void*>(veksMalloc), reinterpret_cast<void*>(vekdMalloc));
}

TEST(Malloc, NegativeLengthWrapsToASmallBlock) {
    // -1 elements of 4 bytes asks for a few bytes: a valid, empty block.
    float* p = veksMalloc(-1);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u);
    vekFree(p);
}

TEST(Version, ConstantRecord) {
    const LibVersion* v = vekGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, vekGetLibVersion());
    EXPECT_EQ(v->major, 4);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->build, 45);
    EXPECT_STREQ(v->name, "libvek.so");
    EXPECT_STREQ(v->version, "Version 4.1 Beta Release");
    EXPECT_STREQ(v->internalVersion, "[4.01.45, 09/30/98]");
    EXPECT_STREQ(v->buildDate, "Oct  2 1998");
    EXPECT_STREQ(v->buildKind, "DLL");
}

}  // namespace

extern "C" int vektest_c_header_probe(void);

TEST(Header, UsableFromC) { EXPECT_EQ(vektest_c_header_probe(), 1); }
