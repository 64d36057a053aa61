/* vekdemo - runs the library on a built-in test signal and prints what it
 * finds. Written in plain C, as an application would call the library. */
#include <math.h>
#include <stdio.h>

#include "vek.h"

#define DEMO_ORDER 10
#define DEMO_LEN (1 << DEMO_ORDER)

static void print_version(void) {
    const LibVersion* v = vekGetLibVersion();
    printf("%s %d.%d.%d (%s, %s)\n", v->name, v->major, v->minor, v->build, v->version,
           v->buildKind);
}

/* Two tones and a DC offset, the signal the later steps analyse. */
static void make_signal(float* x, int n) {
    const double pi = 3.14159265358979323846;
    int i;
    for (i = 0; i < n; ++i)
        x[i] = (float)(0.25 + sin(2 * pi * 50.0 * i / n) + 0.5 * cos(2 * pi * 120.0 * i / n));
}

static void show_error_reporting(void) {
    ErrorReportFunc previous;
    printf("\nA bad call, reported on the console in Parent mode:\n");
    fflush(stdout);
    vekSetErrMode(VEK_ErrorModeParent);
    previous = vekRedirectError(vekStdErrReport);
    vekError(VEK_StatusBadArgument, "vekdemo", "a demonstration report", "vekdemo", __LINE__);
    fflush(stderr);
    printf("status afterwards: %d (%s)\n", vekGetErrStatus(), vekErrorStr(vekGetErrStatus()));
    vekSetErrStatus(VEK_StatusOk);
    vekRedirectError(previous);
    vekSetErrMode(VEK_ErrorModeLeaf);
}

int main(void) {
    float* signal = veksMalloc(DEMO_LEN);
    int i;
    double mean = 0;
    if (!signal) {
        fprintf(stderr, "vekdemo: out of memory\n");
        return 1;
    }
    print_version();
    make_signal(signal, DEMO_LEN);
    for (i = 0; i < DEMO_LEN; ++i) mean += signal[i];
    printf("signal: %d samples in a 32-byte aligned buffer at %p, mean %.4f\n", DEMO_LEN,
           (void*)signal, mean / DEMO_LEN);
    show_error_reporting();
    vekFree(signal);
    return 0;
}
