// Shared helpers of the test suites.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vek.h"

namespace vektest {

struct Report {
    int status;
    std::string func;
    std::string context;
    std::string file;
    int line;
    bool context_null;
};

// Records every report of this thread while it lives; restores the previous
// report function and clears the status when it ends.
class ReportRecorder {
public:
    ReportRecorder();
    ~ReportRecorder();
    ReportRecorder(const ReportRecorder&) = delete;
    ReportRecorder& operator=(const ReportRecorder&) = delete;

    const std::vector<Report>& reports() const;
    size_t size() const { return reports().size(); }
    const Report& operator[](size_t i) const { return reports().at(i); }
    void clear();

private:
    ErrorReportFunc previous_;
};

// Checks that exactly one report was made and that it matches.
::testing::AssertionResult OneReport(const ReportRecorder& rec, int status, const char* func,
                                     const char* context, const char* file);

}  // namespace vektest

// Asserts one report with the given status, export name, message and module.
#define EXPECT_REPORT(rec, status, func, context, file) \
    EXPECT_TRUE(::vektest::OneReport(rec, status, func, context, file))
