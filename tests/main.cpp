// Test driver. Every test starts with status 0, Leaf mode and a report
// function that fails the test: a report nobody expected is a fault.
// Built with VEK_TEST_ISA_HOOK, it also takes --isa=sse2|avx2|avx512 and
// runs the whole suite on that instruction set's kernels.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "test_util.hpp"
#include "vek.h"

#ifdef VEK_TEST_ISA_HOOK
#include "frame/cpu.hpp"
#endif

namespace vektest {

namespace {

thread_local std::vector<Report> t_reports;

int record(int status, const char* func, const char* context, const char* file, int line) {
    t_reports.push_back(Report{status, func ? func : "", context ? context : "", file ? file : "",
                               line, context == nullptr});
    return status;
}

int unexpected(int status, const char* func, const char* context, const char* file, int line) {
    ADD_FAILURE() << "unexpected report: status " << status << " in " << (func ? func : "?") << ": "
                  << (context ? context : "") << " [" << (file ? file : "") << ":" << line << "]";
    return status;
}

class FreshState : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        vekSetErrStatus(0);
        vekSetErrMode(VEK_ErrorModeLeaf);
        vekRedirectError(unexpected);
    }
    void OnTestEnd(const ::testing::TestInfo&) override { vekRedirectError(nullptr); }
};

}  // namespace

ReportRecorder::ReportRecorder() : previous_(vekRedirectError(record)) {
    t_reports.clear();
    vekSetErrStatus(0);
}

ReportRecorder::~ReportRecorder() {
    vekRedirectError(previous_);
    vekSetErrStatus(0);
}

const std::vector<Report>& ReportRecorder::reports() const { return t_reports; }
void ReportRecorder::clear() {
    t_reports.clear();
    vekSetErrStatus(0);
}

::testing::AssertionResult OneReport(const ReportRecorder& rec, int status, const char* func,
                                     const char* context, const char* file) {
    if (rec.size() != 1) {
        auto r = ::testing::AssertionFailure() << rec.size() << " reports instead of 1";
        for (const Report& x : rec.reports()) r << "\n  " << x.func << ": " << x.context;
        return r;
    }
    const Report& r = rec[0];
    if (r.status != status || r.func != func || r.context != context || r.file != file)
        return ::testing::AssertionFailure()
               << "got (" << r.status << ", " << r.func << ", \"" << r.context << "\", " << r.file
               << "), want (" << status << ", " << func << ", \"" << context << "\", " << file
               << ")";
    return ::testing::AssertionSuccess();
}

}  // namespace vektest

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
#ifdef VEK_TEST_ISA_HOOK
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--isa=", 6) != 0) continue;
        int isa = -1;
        for (int k = 0; k < vek::kIsaCount; ++k)
            if (std::strcmp(argv[i] + 6, vek::isa_name(k)) == 0) isa = k;
        if (!vek::force_isa(isa)) {
            std::printf("instruction set %s not available here: skipped\n", argv[i] + 6);
            return 77;
        }
    }
    std::printf("kernels: %s\n", vek::isa_name(vek::active_isa()));
#endif
    ::testing::UnitTest::GetInstance()->listeners().Append(new vektest::FreshState);
    return RUN_ALL_TESTS();
}
