/* vekdemo - runs the library on a built-in test signal and prints what it
 * finds: statistics, the spectrum's strongest tones by FFT, the same bins by
 * Goertzel and by a DFT of another length, and a 16-bit path with automatic
 * scaling. Written in plain C, as an application calls the library. */
#include <math.h>
#include <stdio.h>

#include "vek.h"

#define ORDER 12
#define LEN (1 << ORDER)
#define RATE 8000.0 /* samples per second, for printing in Hz */

static const double kPi = 3.14159265358979323846;

/* The signal: 0.25 DC, tones of 1000 Hz (amplitude 1) and 2437.5 Hz (0.5),
 * and a little deterministic noise. */
static void make_signal(float* x, int n) {
    unsigned seed = 12345u;
    int i;
    for (i = 0; i < n; ++i) {
        double noise;
        seed = seed * 1103515245u + 12345u;
        noise = ((seed >> 8) & 0xffff) / 65536.0 - 0.5;
        x[i] = (float)(0.25 + sin(2 * kPi * 1000.0 * i / RATE) +
                       0.5 * cos(2 * kPi * 2437.5 * i / RATE) + 0.02 * noise);
    }
}

static void print_version(void) {
    const LibVersion* v = vekGetLibVersion();
    printf("%s %d.%d.%d (%s)\n\n", v->name, v->major, v->minor, v->build, v->version);
}

static void statistics(const float* x, int n) {
    int at = 0;
    float peak = veksMaxExt(x, n, &at);
    printf("statistics of %d samples at %.0f Hz:\n", n, RATE);
    printf("  mean %.4f, mean square %.4f, peak %.4f at sample %d\n\n", veksMean(x, n),
           veksStdDev(x, n), peak, at);
}

/* Power spectrum by complex FFT; prints the two strongest bins above DC. */
static void spectrum(const float* x, CplxFloat* work, float* power, int order) {
    const int n = 1 << order;
    int i, first = 0, second = 0;
    for (i = 0; i < n; ++i) {
        work[i].re = x[i];
        work[i].im = 0;
    }
    vekcFft(work, order, VEK_Forw);
    for (i = 0; i <= n / 2; ++i) power[i] = work[i].re * work[i].re + work[i].im * work[i].im;
    power[0] = 0; /* skip DC */
    veksMaxExt(power, n / 2 + 1, &first);
    power[first] = 0;
    veksMaxExt(power, n / 2 + 1, &second);
    printf("FFT of %d points (vekcFft):\n", n);
    printf("  DC %.4f\n", work[0].re / n);
    printf("  strongest tone %.1f Hz, amplitude %.4f\n", first * RATE / n,
           2 * sqrt(work[first].re * work[first].re + work[first].im * work[first].im) / n);
    printf("  next tone      %.1f Hz, amplitude %.4f\n\n", second * RATE / n,
           2 * sqrt(work[second].re * work[second].re + work[second].im * work[second].im) / n);
}

/* One bin without a whole spectrum: Goertzel at the 1000 Hz tone. */
static void goertzel(const float* x, int n) {
    GoertzState st;
    CplxFloat y;
    veksGoertzInit((float)(1000.0 / RATE), &st);
    y = veksbGoertz(&st, x, n);
    printf("Goertzel at 1000 Hz (veksbGoertz): amplitude %.4f\n",
           2 * sqrt(y.re * y.re + y.im * y.im) / n);
}

/* A DFT of 1000 samples (not a power of two): 1000 Hz falls on bin 125. */
static void dft(const float* x, CplxFloat* work, CplxFloat* out) {
    const int n = 1000;
    int i;
    for (i = 0; i < n; ++i) {
        work[i].re = x[i];
        work[i].im = 0;
    }
    vekcDft(work, out, n, VEK_Forw);
    printf("DFT of %d points (vekcDft): bin 125 = %.1f Hz, amplitude %.4f\n\n", n, 125 * RATE / n,
           2 * sqrt(out[125].re * out[125].re + out[125].im * out[125].im) / n);
}

/* The 16-bit path: samples in Q12, a 16-bit FFT that picks its own scale. */
static void fixed_point(const float* x, float* scaled, short* q12, CplxShort* samples,
                        int order) {
    const int n = 1 << order;
    int factor = 0, i, best = 1;
    long bestPower = -1;
    for (i = 0; i < n; ++i) scaled[i] = x[i] * 4096.0f;
    veksbFloatToInt(scaled, q12, n, 16, VEK_RndNear | VEK_CvtSaturate);
    for (i = 0; i < n; ++i) {
        samples[i].re = q12[i];
        samples[i].im = 0;
    }
    vekvFft(samples, order, VEK_Forw, VEK_AUTO_SCALE, &factor);
    for (i = 1; i <= n / 2; ++i) {
        const long p = (long)samples[i].re * samples[i].re + (long)samples[i].im * samples[i].im;
        if (p > bestPower) {
            bestPower = p;
            best = i;
        }
    }
    printf("16-bit FFT (vekvFft, automatic scaling): scale factor %d, strongest tone %.1f Hz\n\n",
           factor, best * RATE / n);
}

static void show_error_reporting(void) {
    ErrorReportFunc previous;
    CplxFloat one = {1, 0};
    printf("A bad call (order 32), reported on the console in Parent mode:\n");
    fflush(stdout);
    vekSetErrMode(VEK_ErrorModeParent);
    previous = vekRedirectError(vekStdErrReport);
    vekcFft(&one, 32, VEK_Forw);
    fflush(stderr);
    printf("status afterwards: %d (%s)\n", vekGetErrStatus(), vekErrorStr(vekGetErrStatus()));
    vekSetErrStatus(VEK_StatusOk);
    vekRedirectError(previous);
    vekSetErrMode(VEK_ErrorModeLeaf);
}

int main(void) {
    float* x = veksMalloc(LEN);
    float* power = veksMalloc(LEN);
    CplxFloat* work = vekcMalloc(LEN);
    CplxFloat* out = vekcMalloc(LEN);
    CplxShort* samples = vekvMalloc(LEN);
    short* q12 = vekwMalloc(LEN);
    int status = 0;
    if (!x || !power || !work || !out || !samples || !q12) {
        fprintf(stderr, "vekdemo: out of memory\n");
        status = 1;
    } else {
        print_version();
        make_signal(x, LEN);
        statistics(x, LEN);
        spectrum(x, work, power, ORDER);
        goertzel(x, LEN);
        dft(x, work, out);
        fixed_point(x, power, q12, samples, ORDER);
        show_error_reporting();
    }
    vekFree(x);
    vekFree(power);
    vekFree(work);
    vekFree(out);
    vekFree(samples);
    vekFree(q12);
    return status;
}
