/*
 * vek.h - the public interface of the vek signal-processing library.
 *
 * Plain C (C89 with C++-style comments avoided), usable from C and C++.
 * Every function works on caller-owned arrays; failures are reported through
 * vekError and the thread's status (see "Status and error reporting").
 */
#ifndef VEK_H
#define VEK_H

#if defined(_WIN32)
#if defined(VEK_BUILDING_LIBRARY)
#define VEK_API __declspec(dllexport)
#elif defined(VEK_STATIC)
#define VEK_API
#else
#define VEK_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define VEK_API __attribute__((visibility("default")))
#else
#define VEK_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Element types
 * ------------------------------------------------------------------------ */

typedef struct { float re; float im; } CplxFloat;
typedef struct { double re; double im; } CplxDouble;
typedef struct { short re; short im; } CplxShort;
typedef struct { int re; int im; } CplxInt;

/* ------------------------------------------------------------------------
 * Status codes. Zero is success, negative values are failures.
 * ------------------------------------------------------------------------ */

enum {
    VEK_StatusOk = 0,
    VEK_StatusBacktrace = -1,     /* re-report by a caller of a failed export */
    VEK_StatusInternal = -3,
    VEK_StatusNoMemory = -4,
    VEK_StatusBadArgument = -5,
    VEK_StatusBadFunction = -6,
    VEK_StatusNoConvergence = -7,
    VEK_StatusAutotrace = -8,
    /* returned by the FIR design functions (vekdFirLowpass, ...) */
    VEK_StatusFirNullTaps = -9,   /* taps == NULL */
    VEK_StatusFirShortTaps = -10, /* tapsLen < 5 */
    VEK_StatusFirBadFreq = -11,   /* a frequency outside (0, 0.5) */
    VEK_StatusFirBadBand = -12    /* rHighFreq not above rLowFreq */
};

/* Error modes, one per thread. */
enum {
    VEK_ErrorModeLeaf = 0,   /* default: a report normally ends the application */
    VEK_ErrorModeParent = 1, /* a report is shown and the call returns */
    VEK_ErrorModeSilent = 2  /* nothing is shown; only the status is kept */
};

/* A report function receives every report made through vekError and returns
 * the status it was given. Any of the strings may be NULL, line may be
 * negative. */
typedef int (*ErrorReportFunc)(int status, const char* funcName,
                               const char* context, const char* file,
                               int line);

/* ------------------------------------------------------------------------
 * Scale modes of the 16-bit (w, v) functions: their last two arguments are
 * (int scaleMode, int* scaleFactor). A factor f stores result * 2^-f.
 * ------------------------------------------------------------------------ */

enum {
    VEK_NO_SCALE = 0,     /* keep the low 16 bits (wrap-around) */
    VEK_SATURATE = 1,     /* clamp to -32768..32767 */
    VEK_FIXED_SCALE = 2,  /* scale by the caller's *scaleFactor */
    VEK_AUTO_SCALE = 4    /* choose the factor and write it to *scaleFactor */
};

/* ------------------------------------------------------------------------
 * Transform flags word
 * ------------------------------------------------------------------------ */

enum {
    VEK_Forw = 1,          /* forward transform */
    VEK_Inv = 2,           /* inverse transform, scaled by 1/N */
    VEK_Init = 4,          /* build the tables, touch no data */
    VEK_Free = 8,          /* release the tables */
    VEK_NoScale = 16,      /* leave the inverse unscaled */
    VEK_NoBitRev = 32,     /* natural order in and out (the default) */
    VEK_InBitRev = 64,     /* input in bit-reversed order */
    VEK_OutBitRev = 128,   /* output left in bit-reversed order */
    VEK_OutRCPack = 256,   /* real forward: RCPack spectrum layout */
    VEK_OutRCPerm = 512,   /* real forward: RCPerm spectrum layout */
    VEK_InRCPack = 1024,   /* real inverse: RCPack spectrum layout */
    VEK_InRCPerm = 4096,   /* real inverse: RCPerm spectrum layout */
    VEK_DoIntCore = 8192,  /* 16-bit forms: request the integer core */
    VEK_DoFloatCore = 16384, /* 16-bit forms: request the floating core */
    VEK_DoFastPKD = 32768  /* 16-bit forms: request the packed-integer core */
};

/* ------------------------------------------------------------------------
 * Library version
 * ------------------------------------------------------------------------ */

typedef struct {
    int major;
    int minor;
    int build;
    const char* name;            /* the library's module file name */
    const char* version;
    const char* internalVersion;
    const char* buildDate;
    const char* buildKind;
} LibVersion;

/* ========================================================================
 * Status and error reporting
 * ======================================================================== */

/* Stores status as the thread's last status (not for -1 and -8) and hands the
 * report to the thread's report function. vekError(0, ...) stores 0 and makes
 * no report. Returns what the report function returned, or 0. */
VEK_API int vekError(int status, const char* funcName, const char* context,
                     const char* file, int line);
VEK_API const char* vekErrorStr(int status);
VEK_API int vekGetErrStatus(void);
VEK_API void vekSetErrStatus(int status);
VEK_API int vekGetErrMode(void);
VEK_API void vekSetErrMode(int mode);
/* Installs fn (NULL: the default vekGuiBoxReport); returns the previous one. */
VEK_API ErrorReportFunc vekRedirectError(ErrorReportFunc fn);
/* The three report functions. On systems without message boxes the box
 * question is asked on the controlling terminal; without one, Leaf mode
 * terminates and Parent mode continues. */
VEK_API int vekGuiBoxReport(int status, const char* funcName,
                            const char* context, const char* file, int line);
VEK_API int vekStdErrReport(int status, const char* funcName,
                            const char* context, const char* file, int line);
VEK_API int vekNulDevReport(int status, const char* funcName,
                            const char* context, const char* file, int line);

/* ========================================================================
 * Memory and version
 * ======================================================================== */

/* Blocks are 32-byte aligned and released only by vekFree. They return NULL
 * when memory is short and never report. */
VEK_API void* vekMalloc(int length);          /* bytes */
VEK_API float* veksMalloc(int length);        /* elements of 4 bytes */
VEK_API int* vekiMalloc(int length);
VEK_API CplxShort* vekvMalloc(int length);
VEK_API double* vekdMalloc(int length);       /* elements of 8 bytes */
VEK_API CplxFloat* vekcMalloc(int length);
VEK_API CplxInt* vekjMalloc(int length);
VEK_API CplxDouble* vekzMalloc(int length);   /* elements of 16 bytes */
VEK_API short* vekwMalloc(int length);        /* elements of 2 bytes */
VEK_API void vekFree(void* block);
VEK_API const LibVersion* vekGetLibVersion(void);

/* ========================================================================
 * Floating-point vector arithmetic (s, d, c, z)
 * ======================================================================== */

/* Vectors: n and len count elements and must be positive. Forms numbered 1
 * work in place; 2 combine src into dst (dst = dst op src); 3 write
 * srcA op srcB to dst. A destination may be one of the sources. Results are
 * computed in double precision and rounded once to the element type; complex
 * products are (a.re*b.re - a.im*b.im, a.im*b.re + a.re*b.im).
 *
 * Copy moves the elements as if through a temporary, so overlapping src and
 * dst are fine.
 * Sqr squares; the complex square is ((re - im)(re + im), 2 re im).
 * Sqrt: a negative real element is left as it was (Sqrt1) or its dst element
 *   is not written (Sqrt2); the pass completes and then reports once. Complex
 *   roots are principal roots (real part >= 0).
 * Thresh: relOp 0 replaces elements below thresh by thresh, any other relOp
 *   those above it. Complex forms compare magnitudes and keep the phase
 *   (a zero element raised to thresh becomes thresh + 0i); thresh >= 0.
 * InvThresh: 1/x, bounded: for thresh > 0 an element of magnitude at most
 *   thresh gives 1/thresh with the sign (complex: the phase) of 1/x, zero
 *   counting as positive. For thresh == 0 a zero element gives 3.4028235e38
 *   in float and CplxFloat data, 0 in double and CplxDouble data, and the
 *   call reports once after the pass. thresh < 0 is rejected.
 * Normalize: dst = (src - offset) * (1 / factor), factor != 0. */

VEK_API void veksbAdd1(float val, float* dst, int n);
VEK_API void veksbAdd2(const float* src, float* dst, int n);
VEK_API void veksbAdd3(const float* srcA, const float* srcB, float* dst, int n);
VEK_API void veksbSub1(float val, float* dst, int n);           /* dst - val */
VEK_API void veksbSub2(const float* src, float* dst, int n);    /* dst - src */
VEK_API void veksbSub3(const float* srcA, const float* srcB, float* dst, int n);
VEK_API void veksbMpy1(float val, float* dst, int n);
VEK_API void veksbMpy2(const float* src, float* dst, int n);
VEK_API void veksbMpy3(const float* srcA, const float* srcB, float* dst, int n);
VEK_API void veksbZero(float* dst, int n);
VEK_API void veksbSet(float val, float* dst, int n);
VEK_API void veksbCopy(const float* src, float* dst, int n);
VEK_API void veksbSqr1(float* vec, int len);
VEK_API void veksbSqr2(const float* src, float* dst, int len);
VEK_API void veksbSqrt1(float* vec, int len);
VEK_API void veksbSqrt2(const float* src, float* dst, int len);
VEK_API void veksbThresh1(float* vec, int len, float thresh, int relOp);
VEK_API void veksbThresh2(const float* src, float* dst, int len, float thresh, int relOp);
VEK_API void veksbInvThresh1(float* vec, int len, float thresh);
VEK_API void veksbInvThresh2(const float* src, float* dst, int len, float thresh);
VEK_API void veksbAbs1(float* vec, int len);
VEK_API void veksbAbs2(const float* src, float* dst, int len);
VEK_API void veksbNormalize(const float* src, float* dst, int n, float offset, float factor);

VEK_API void vekdbAdd1(double val, double* dst, int n);
VEK_API void vekdbAdd2(const double* src, double* dst, int n);
VEK_API void vekdbAdd3(const double* srcA, const double* srcB, double* dst, int n);
VEK_API void vekdbSub1(double val, double* dst, int n);           /* dst - val */
VEK_API void vekdbSub2(const double* src, double* dst, int n);    /* dst - src */
VEK_API void vekdbSub3(const double* srcA, const double* srcB, double* dst, int n);
VEK_API void vekdbMpy1(double val, double* dst, int n);
VEK_API void vekdbMpy2(const double* src, double* dst, int n);
VEK_API void vekdbMpy3(const double* srcA, const double* srcB, double* dst, int n);
VEK_API void vekdbZero(double* dst, int n);
VEK_API void vekdbSet(double val, double* dst, int n);
VEK_API void vekdbCopy(const double* src, double* dst, int n);
VEK_API void vekdbSqr1(double* vec, int len);
VEK_API void vekdbSqr2(const double* src, double* dst, int len);
VEK_API void vekdbSqrt1(double* vec, int len);
VEK_API void vekdbSqrt2(const double* src, double* dst, int len);
VEK_API void vekdbThresh1(double* vec, int len, double thresh, int relOp);
VEK_API void vekdbThresh2(const double* src, double* dst, int len, double thresh, int relOp);
VEK_API void vekdbInvThresh1(double* vec, int len, double thresh);
VEK_API void vekdbInvThresh2(const double* src, double* dst, int len, double thresh);
VEK_API void vekdbAbs1(double* vec, int len);
VEK_API void vekdbAbs2(const double* src, double* dst, int len);
VEK_API void vekdbNormalize(const double* src, double* dst, int n, double offset, double factor);

VEK_API void vekcbAdd1(CplxFloat val, CplxFloat* dst, int n);
VEK_API void vekcbAdd2(const CplxFloat* src, CplxFloat* dst, int n);
VEK_API void vekcbAdd3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n);
VEK_API void vekcbSub1(CplxFloat val, CplxFloat* dst, int n);           /* dst - val */
VEK_API void vekcbSub2(const CplxFloat* src, CplxFloat* dst, int n);    /* dst - src */
VEK_API void vekcbSub3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n);
VEK_API void vekcbMpy1(CplxFloat val, CplxFloat* dst, int n);
VEK_API void vekcbMpy2(const CplxFloat* src, CplxFloat* dst, int n);
VEK_API void vekcbMpy3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n);
VEK_API void vekcbZero(CplxFloat* dst, int n);
VEK_API void vekcbSet(CplxFloat val, CplxFloat* dst, int n);
VEK_API void vekcbCopy(const CplxFloat* src, CplxFloat* dst, int n);
VEK_API void vekcbSqr1(CplxFloat* vec, int len);
VEK_API void vekcbSqr2(const CplxFloat* src, CplxFloat* dst, int len);
VEK_API void vekcbSqrt1(CplxFloat* vec, int len);
VEK_API void vekcbSqrt2(const CplxFloat* src, CplxFloat* dst, int len);
VEK_API void vekcbThresh1(CplxFloat* vec, int len, float thresh, int relOp);
VEK_API void vekcbThresh2(const CplxFloat* src, CplxFloat* dst, int len, float thresh, int relOp);
VEK_API void vekcbInvThresh1(CplxFloat* vec, int len, float thresh);
VEK_API void vekcbInvThresh2(const CplxFloat* src, CplxFloat* dst, int len, float thresh);
VEK_API void vekcbNormalize(const CplxFloat* src, CplxFloat* dst, int n, CplxFloat offset,
                            float factor);

VEK_API void vekzbAdd1(CplxDouble val, CplxDouble* dst, int n);
VEK_API void vekzbAdd2(const CplxDouble* src, CplxDouble* dst, int n);
VEK_API void vekzbAdd3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n);
VEK_API void vekzbSub1(CplxDouble val, CplxDouble* dst, int n);           /* dst - val */
VEK_API void vekzbSub2(const CplxDouble* src, CplxDouble* dst, int n);    /* dst - src */
VEK_API void vekzbSub3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n);
VEK_API void vekzbMpy1(CplxDouble val, CplxDouble* dst, int n);
VEK_API void vekzbMpy2(const CplxDouble* src, CplxDouble* dst, int n);
VEK_API void vekzbMpy3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n);
VEK_API void vekzbZero(CplxDouble* dst, int n);
VEK_API void vekzbSet(CplxDouble val, CplxDouble* dst, int n);
VEK_API void vekzbCopy(const CplxDouble* src, CplxDouble* dst, int n);
VEK_API void vekzbSqr1(CplxDouble* vec, int len);
VEK_API void vekzbSqr2(const CplxDouble* src, CplxDouble* dst, int len);
VEK_API void vekzbSqrt1(CplxDouble* vec, int len);
VEK_API void vekzbSqrt2(const CplxDouble* src, CplxDouble* dst, int len);
VEK_API void vekzbThresh1(CplxDouble* vec, int len, double thresh, int relOp);
VEK_API void vekzbThresh2(const CplxDouble* src, CplxDouble* dst, int len, double thresh,
                          int relOp);
VEK_API void vekzbInvThresh1(CplxDouble* vec, int len, double thresh);
VEK_API void vekzbInvThresh2(const CplxDouble* src, CplxDouble* dst, int len, double thresh);
VEK_API void vekzbNormalize(const CplxDouble* src, CplxDouble* dst, int n, CplxDouble offset,
                            double factor);

/* Single complex values. Div by 0 + 0i reports and returns 0 + 0i. */
VEK_API CplxFloat vekcAdd(CplxFloat a, CplxFloat b);
VEK_API CplxFloat vekcSub(CplxFloat a, CplxFloat b);
VEK_API CplxFloat vekcMpy(CplxFloat a, CplxFloat b);
VEK_API CplxFloat vekcDiv(CplxFloat a, CplxFloat b);
VEK_API CplxFloat vekcConj(CplxFloat a);
VEK_API CplxFloat vekcSet(float re, float im);

VEK_API CplxDouble vekzAdd(CplxDouble a, CplxDouble b);
VEK_API CplxDouble vekzSub(CplxDouble a, CplxDouble b);
VEK_API CplxDouble vekzMpy(CplxDouble a, CplxDouble b);
VEK_API CplxDouble vekzDiv(CplxDouble a, CplxDouble b);
VEK_API CplxDouble vekzConj(CplxDouble a);
VEK_API CplxDouble vekzSet(double re, double im);


/* end of Floating-point vector arithmetic (s, d, c, z) */

/* ========================================================================
 * 16-bit vector arithmetic (w, v)
 * ======================================================================== */

/* 16-bit (w: short) and complex 16-bit (v: CplxShort) vectors. The sums,
 * differences and products are exact in 32 bits and narrowed by scaleMode:
 *   VEK_NO_SCALE      the low 16 bits;
 *   VEK_SATURATE      clamped to -32768..32767;
 *   VEK_AUTO_SCALE    every result shifted right by the smallest factor
 *                     that makes all of them fit; the factor (0 when
 *                     nothing overflowed) is written to *scaleFactor;
 *   VEK_FIXED_SCALE   shifted by *scaleFactor (right for f > 0, left for
 *                     f < 0; a NULL pointer reads as 0), low 16 bits kept;
 *   VEK_FIXED_SCALE | VEK_SATURATE   the same, clamped.
 * Any other mode value (5, 6, 7) takes the VEK_FIXED_SCALE path. Only
 * VEK_AUTO_SCALE requires scaleFactor. Complex products are
 * (a.re*b.re - a.im*b.im, a.im*b.re + a.re*b.im), both parts under the same
 * mode and, in VEK_AUTO_SCALE, one factor. */

VEK_API void vekwbZero(short* dst, int n);
VEK_API void vekwbSet(short val, short* dst, int n);
VEK_API void vekwbCopy(const short* src, short* dst, int n);
VEK_API void vekwbAdd1(short val, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbAdd2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbAdd3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor);
VEK_API void vekwbSub1(short val, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbSub2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbSub3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor);
VEK_API void vekwbMpy1(short val, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbMpy2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekwbMpy3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor);

VEK_API void vekvbZero(CplxShort* dst, int n);
VEK_API void vekvbSet(CplxShort val, CplxShort* dst, int n);
VEK_API void vekvbCopy(const CplxShort* src, CplxShort* dst, int n);
VEK_API void vekvbAdd1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekvbAdd2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor);
VEK_API void vekvbAdd3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor);
VEK_API void vekvbSub1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekvbSub2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor);
VEK_API void vekvbSub3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor);
VEK_API void vekvbMpy1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor);
VEK_API void vekvbMpy2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor);
VEK_API void vekvbMpy3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor);

/* Conjugates, without scaling; a negated -32768 saturates to 32767.
 * ConjFlip2: dst[i] = conj(src[n-1-i]), the mirror image of a run of
 *   spectrum bins (src may be dst).
 * ConjExtend: a spectrum of n points given by its first half X[0..n/2]
 *   (n/2 + 1 elements) is completed by X[n-k] = conj(X[k]) for
 *   1 <= k <= (n-1)/2. vec and dst hold n elements; src holds n/2 + 1. */
VEK_API void vekvbConj1(CplxShort* vec, int n);
VEK_API void vekvbConj2(const CplxShort* src, CplxShort* dst, int n);
VEK_API void vekvbConjFlip2(const CplxShort* src, CplxShort* dst, int n);
VEK_API void vekvbConjExtend1(CplxShort* vec, int n);
VEK_API void vekvbConjExtend2(const CplxShort* src, CplxShort* dst, int n);

/* Single CplxShort values; results saturate to -32768..32767. Div truncates
 * toward zero; division by 0 + 0i reports and returns 0 + 0i. */
VEK_API CplxShort vekvAdd(CplxShort a, CplxShort b);
VEK_API CplxShort vekvSub(CplxShort a, CplxShort b);
VEK_API CplxShort vekvMpy(CplxShort a, CplxShort b);
VEK_API CplxShort vekvDiv(CplxShort a, CplxShort b);
VEK_API CplxShort vekvConj(CplxShort a);
VEK_API CplxShort vekvSet(short re, short im);


/* end of 16-bit vector arithmetic (w, v) */

/* ========================================================================
 * Float and integer conversions
 * ======================================================================== */

/* The flags word. veksbIntToFloat and vekdbIntToFloat take 0 (signed
 * integers) or VEK_CvtUnsigned. veksbFloatToInt and vekdbFloatToInt take
 * exactly one rounding bit, optionally with the other three. */
enum {
    VEK_RndNear = 128,       /* round to nearest, ties to even */
    VEK_RndZero = 256,       /* round toward zero */
    VEK_RndFloor = 512,      /* round toward minus infinity */
    VEK_RndCeil = 1024,      /* round toward plus infinity */
    VEK_CvtUnsigned = 2048,  /* the integers are unsigned */
    VEK_CvtSaturate = 4096,  /* out of range: store the nearer limit (NaN: 0) */
    VEK_CvtReport = 8192     /* out of range: report it and go on */
};

/* The integer array is read or written at intSize bits (8, 16 or 32). Both
 * directions first clear the thread's status, then run and report every
 * argument check before they return on a failure. A float-to-integer
 * conversion rounds exactly, whatever the processor's rounding mode. An
 * element outside the integer range, NaN included, is saturated and/or
 * reported as the flags say; with neither bit it is left unwritten. */
VEK_API void veksbIntToFloat(const void* src, float* dst, int len, int intSize,
                             int flags);
VEK_API void vekdbIntToFloat(const void* src, double* dst, int len,
                             int intSize, int flags);
VEK_API void veksbFloatToInt(const float* src, void* dst, int len, int intSize,
                             int flags);
VEK_API void vekdbFloatToInt(const double* src, void* dst, int len,
                             int intSize, int flags);

/* end of Float and integer conversions */

/* ========================================================================
 * Dot products
 * ======================================================================== */

/* The sum of srcA[i] * srcB[i]; no operand is conjugated. Two type letters
 * name the first and the second operand. len 0 gives 0; a failed check
 * returns 0. The floating forms sum in double precision, in 16 partial sums
 * (term i into sum i mod 16, a complex element counting as two terms),
 * added pairwise at the end: the same result on every processor. */
VEK_API float veksDotProd(const float* srcA, const float* srcB, int len);
VEK_API double vekdDotProd(const double* srcA, const double* srcB, int len);
VEK_API CplxFloat vekcDotProd(const CplxFloat* srcA, const CplxFloat* srcB,
                              int len);
VEK_API CplxFloat vekcsDotProd(const CplxFloat* srcA, const float* srcB,
                               int len);
VEK_API CplxFloat vekscDotProd(const float* srcA, const CplxFloat* srcB,
                               int len);
VEK_API CplxDouble vekzDotProd(const CplxDouble* srcA, const CplxDouble* srcB,
                               int len);
VEK_API CplxDouble vekzdDotProd(const CplxDouble* srcA, const double* srcB,
                                int len);
VEK_API CplxDouble vekdzDotProd(const double* srcA, const CplxDouble* srcB,
                                int len);

/* 16-bit forms: the exact sums modulo 2^32, narrowed to 16 bits by the scale
 * mode (in auto mode one factor serves re and im). */
VEK_API short vekwDotProd(const short* srcA, const short* srcB, int len,
                          int scaleMode, int* scaleFactor);
VEK_API CplxShort vekvDotProd(const CplxShort* srcA, const CplxShort* srcB,
                              int len, int scaleMode, int* scaleFactor);
VEK_API CplxShort vekwvDotProd(const short* srcA, const CplxShort* srcB,
                               int len, int scaleMode, int* scaleFactor);
VEK_API CplxShort vekvwDotProd(const CplxShort* srcA, const short* srcB,
                               int len, int scaleMode, int* scaleFactor);

/* The same 32-bit sums, returned whole. scaleMode exactly VEK_AUTO_SCALE
 * writes 0 to *scaleFactor; exactly VEK_FIXED_SCALE shifts by *scaleFactor
 * (right when positive, left when negative, no saturation); any other mode
 * leaves the sums as they are. */
VEK_API int vekwDotProdExt(const short* srcA, const short* srcB, int len,
                           int scaleMode, int* scaleFactor);
VEK_API CplxInt vekvDotProdExt(const CplxShort* srcA, const CplxShort* srcB,
                               int len, int scaleMode, int* scaleFactor);
VEK_API CplxInt vekwvDotProdExt(const short* srcA, const CplxShort* srcB,
                                int len, int scaleMode, int* scaleFactor);
VEK_API CplxInt vekvwDotProdExt(const CplxShort* srcA, const short* srcB,
                                int len, int scaleMode, int* scaleFactor);

/* end of Dot products */

/* ========================================================================
 * Statistics
 * ======================================================================== */

/* Summaries of vec[0..len). len below 1 or a null vec is reported and gives
 * 0. The floating sums are taken in double precision in the 16 partial
 * sums of the dot products. */
VEK_API float veksMean(const float* vec, int len);
VEK_API double vekdMean(const double* vec, int len);
/* The 32-bit sum (wrapping) divided by len toward zero, kept to 16 bits. */
VEK_API short vekwMean(const short* vec, int len);

/* The mean square, the sum of vec[i]^2 divided by len: no mean is
 * subtracted and no root taken. The 16-bit form computes it from the exact
 * sum and narrows it by the scale mode. */
VEK_API float veksStdDev(const float* vec, int len);
VEK_API double vekdStdDev(const double* vec, int len);
VEK_API short vekwStdDev(const short* vec, int len, int scaleMode,
                         int* scaleFactor);

/* Largest and smallest element. NaN elements are passed over; only when all
 * are NaN is the result NaN. */
VEK_API float veksMax(const float* vec, int len);
VEK_API double vekdMax(const double* vec, int len);
VEK_API short vekwMax(const short* vec, int len);
VEK_API float veksMin(const float* vec, int len);
VEK_API double vekdMin(const double* vec, int len);
VEK_API short vekwMin(const short* vec, int len);

/* The same, also writing the index of the first occurrence to *index
 * (unless index is NULL; all NaN: index 0). */
VEK_API float veksMaxExt(const float* vec, int len, int* index);
VEK_API double vekdMaxExt(const double* vec, int len, int* index);
VEK_API short vekwMaxExt(const short* vec, int len, int* index);
VEK_API float veksMinExt(const float* vec, int len, int* index);
VEK_API double vekdMinExt(const double* vec, int len, int* index);
VEK_API short vekwMinExt(const short* vec, int len, int* index);

/* end of Statistics */

/* ========================================================================
 * Bit reversal and twiddle tables
 * ======================================================================== */

/* ------------------------------------------------------------------------
 * Transform tables are built on first use and kept per thread; a returned
 * table stays valid until the matching Free call or the thread's end, and
 * the caller never frees it.
 * ------------------------------------------------------------------------ */

/* The low `order` bits of a reversed (0 for order below 1). */
VEK_API int vekBitRev(int a, int order);
/* tbl[i] = vekBitRev(i, order) for i < 2^order. */
VEK_API void vekCalcBitRevTbl(int* tbl, int order);
VEK_API int* vekGetBitRevTbl(int order);
VEK_API void vekFreeBitRevTbls(void);

/* Permute 2^order elements into bit-reversed order: in place (1) or from
 * src to dst (2). */
VEK_API void vekwbBitRev1(short* vec, int order);
VEK_API void vekvbBitRev1(CplxShort* vec, int order);
VEK_API void veksbBitRev1(float* vec, int order);
VEK_API void vekcbBitRev1(CplxFloat* vec, int order);
VEK_API void vekdbBitRev1(double* vec, int order);
VEK_API void vekzbBitRev1(CplxDouble* vec, int order);
VEK_API void vekwbBitRev2(const short* src, short* dst, int order);
VEK_API void vekvbBitRev2(const CplxShort* src, CplxShort* dst, int order);
VEK_API void veksbBitRev2(const float* src, float* dst, int order);
VEK_API void vekcbBitRev2(const CplxFloat* src, CplxFloat* dst, int order);
VEK_API void vekdbBitRev2(const double* src, double* dst, int order);
VEK_API void vekzbBitRev2(const CplxDouble* src, CplxDouble* dst, int order);

/* FFT twiddles: 2^order entries exp(-2*pi*i*k/2^order). The 16-bit table
 * holds 16384*cos and -16384*sin truncated toward zero. */
VEK_API void vekcCalcFftTwdTbl(CplxFloat* tbl, int order);
VEK_API void vekzCalcFftTwdTbl(CplxDouble* tbl, int order);
VEK_API void vekvCalcFftTwdTbl(CplxShort* tbl, int order);
VEK_API CplxFloat* vekcGetFftTwdTbl(int order);
VEK_API CplxDouble* vekzGetFftTwdTbl(int order);
VEK_API CplxShort* vekvGetFftTwdTbl(int order);

/* DFT twiddles: `length` entries exp(-2*pi*i*k/length). A thread keeps at
 * most 32 lengths per type ("Full Table" beyond, until the Free call). */
VEK_API void vekcCalcDftTwdTbl(CplxFloat* tbl, int length);
VEK_API void vekzCalcDftTwdTbl(CplxDouble* tbl, int length);
VEK_API void vekvCalcDftTwdTbl(CplxShort* tbl, int length);
VEK_API CplxFloat* vekcGetDftTwdTbl(int length);
VEK_API CplxDouble* vekzGetDftTwdTbl(int length);
VEK_API CplxShort* vekvGetDftTwdTbl(int length);

/* Release every table of the type (FFT, DFT, kernel tables, work buffers). */
VEK_API void vekcFreeTwdTbls(void);
VEK_API void vekzFreeTwdTbls(void);
VEK_API void vekvFreeTwdTbls(void);

/* end of Bit reversal and twiddle tables */

/* ========================================================================
 * Complex FFT
 * ======================================================================== */

/* ------------------------------------------------------------------------
 * FFT of N = 2^order points (order 0..31). flags: VEK_Forw or VEK_Inv
 * (scaled by 1/N unless VEK_NoScale), at most one of VEK_NoBitRev,
 * VEK_InBitRev, VEK_OutBitRev; VEK_Init builds the tables and returns,
 * VEK_Free releases them (the data pointers may then be NULL). Nip forms
 * never write their input; r forms hold real and imaginary parts apart.
 * ------------------------------------------------------------------------ */

VEK_API void vekcFft(CplxFloat* samps, int order, int flags);
VEK_API void vekzFft(CplxDouble* samps, int order, int flags);
VEK_API void vekcFftNip(const CplxFloat* inSamps, CplxFloat* outSamps, int order,
                        int flags);
VEK_API void vekzFftNip(const CplxDouble* inSamps, CplxDouble* outSamps, int order,
                        int flags);
VEK_API void vekcrFft(float* reSamps, float* imSamps, int order, int flags);
VEK_API void vekzrFft(double* reSamps, double* imSamps, int order, int flags);
VEK_API void vekcrFftNip(const float* reInSamps, const float* imInSamps,
                         float* reOutSamps, float* imOutSamps, int order, int flags);
VEK_API void vekzrFftNip(const double* reInSamps, const double* imInSamps,
                         double* reOutSamps, double* imOutSamps, int order, int flags);

/* 16-bit forms: computed in single precision and narrowed under scaleMode
 * (modes 0 and 1 round to nearest and saturate). VEK_DoIntCore and
 * VEK_DoFloatCore are accepted, not both; the computation is the same. */
VEK_API void vekvFft(CplxShort* samps, int order, int flags, int scaleMode,
                     int* scaleFactor);
VEK_API void vekvFftNip(const CplxShort* inSamps, CplxShort* outSamps, int order,
                        int flags, int scaleMode, int* scaleFactor);
VEK_API void vekvrFft(short* reSamps, short* imSamps, int order, int flags,
                      int scaleMode, int* scaleFactor);
VEK_API void vekvrFftNip(const short* reInSamps, const short* imInSamps,
                         short* reOutSamps, short* imOutSamps, int order, int flags,
                         int scaleMode, int* scaleFactor);

/* end of Complex FFT */

/* ========================================================================
 * Real FFT and packed spectra
 * ======================================================================== */

/* ------------------------------------------------------------------------
 * FFT of N = 2^order real values (order 0..31) and its inverse. A real
 * signal's spectrum X[0..N/2] (X[0] and X[N/2] real) is kept in one of
 * three layouts:
 *   CCS     N+2 values: X[0].re, 0, X[1].re, X[1].im, ..., X[N/2].re, 0
 *   RCPack  N values:   X[0].re, X[1].re, X[1].im, ..., X[N/2-1].im, X[N/2].re
 *   RCPerm  N values:   X[0].re, X[N/2].re, X[1].re, X[1].im, ..., X[N/2-1].im
 * flags: VEK_Forw or VEK_Inv (the sign of the exponent; VEK_Inv scales by
 * 1/N unless VEK_NoScale); VEK_Init builds the tables and returns, VEK_Free
 * releases them (the data pointers may then be NULL). The l forms take
 * exactly one layout bit: VEK_OutRCPack or VEK_OutRCPerm (RealFftl),
 * VEK_InRCPack or VEK_InRCPerm (CcsFftl). Nip forms never write their
 * input. The 16-bit forms compute in single precision and narrow the
 * result under scaleMode (modes 0 and 1 round to nearest and saturate).
 * ------------------------------------------------------------------------ */

/* Real signal to CCS spectrum, in place in N+2 values. */
VEK_API void veksRealFft(float* samps, int order, int flags);
VEK_API void vekdRealFft(double* samps, int order, int flags);
VEK_API void veksRealFftNip(const float* inSamps, float* outSamps, int order, int flags);
VEK_API void vekdRealFftNip(const double* inSamps, double* outSamps, int order, int flags);

/* CCS spectrum to real signal. */
VEK_API void veksCcsFft(float* samps, int order, int flags);
VEK_API void vekdCcsFft(double* samps, int order, int flags);
VEK_API void veksCcsFftNip(const float* inSamps, float* outSamps, int order, int flags);
VEK_API void vekdCcsFftNip(const double* inSamps, double* outSamps, int order, int flags);

/* Real signal to RCPack or RCPerm spectrum, in place in N values. */
VEK_API void veksRealFftl(float* samps, int order, int flags);
VEK_API void vekdRealFftl(double* samps, int order, int flags);
VEK_API void veksRealFftlNip(const float* inSamps, float* outSamps, int order, int flags);
VEK_API void vekdRealFftlNip(const double* inSamps, double* outSamps, int order, int flags);

/* RCPack or RCPerm spectrum to real signal. */
VEK_API void veksCcsFftl(float* samps, int order, int flags);
VEK_API void vekdCcsFftl(double* samps, int order, int flags);
VEK_API void veksCcsFftlNip(const float* inSamps, float* outSamps, int order, int flags);
VEK_API void vekdCcsFftlNip(const double* inSamps, double* outSamps, int order, int flags);

/* Two signals at once, each as by the one-signal form. */
VEK_API void veksReal2Fft(float* xSamps, float* ySamps, int order, int flags);
VEK_API void vekdReal2Fft(double* xSamps, double* ySamps, int order, int flags);
VEK_API void veksReal2FftNip(const float* xInSamps, float* xOutSamps,
                             const float* yInSamps, float* yOutSamps, int order,
                             int flags);
VEK_API void vekdReal2FftNip(const double* xInSamps, double* xOutSamps,
                             const double* yInSamps, double* yOutSamps, int order,
                             int flags);
VEK_API void veksCcs2Fft(float* xSamps, float* ySamps, int order, int flags);
VEK_API void vekdCcs2Fft(double* xSamps, double* ySamps, int order, int flags);
VEK_API void veksCcs2FftNip(const float* xInSamps, float* xOutSamps,
                            const float* yInSamps, float* yOutSamps, int order,
                            int flags);
VEK_API void vekdCcs2FftNip(const double* xInSamps, double* xOutSamps,
                            const double* yInSamps, double* yOutSamps, int order,
                            int flags);

/* 16-bit forms: the same transforms and layouts on short data. */
VEK_API void vekwRealFft(short* samps, int order, int flags, int scaleMode, int* scaleFactor);
VEK_API void vekwRealFftNip(const short* inSamps, short* outSamps, int order, int flags,
                            int scaleMode, int* scaleFactor);
VEK_API void vekwCcsFft(short* samps, int order, int flags, int scaleMode, int* scaleFactor);
VEK_API void vekwCcsFftNip(const short* inSamps, short* outSamps, int order, int flags,
                           int scaleMode, int* scaleFactor);
VEK_API void vekwRealFftl(short* samps, int order, int flags, int scaleMode, int* scaleFactor);
VEK_API void vekwRealFftlNip(const short* inSamps, short* outSamps, int order, int flags,
                             int scaleMode, int* scaleFactor);
VEK_API void vekwCcsFftl(short* samps, int order, int flags, int scaleMode, int* scaleFactor);
VEK_API void vekwCcsFftlNip(const short* inSamps, short* outSamps, int order, int flags,
                            int scaleMode, int* scaleFactor);
/* One scale factor for both signals. */
VEK_API void vekwReal2Fft(short* xSamps, short* ySamps, int order, int flags, int scaleMode,
                          int* scaleFactor);
VEK_API void vekwReal2FftNip(const short* xInSamps, short* xOutSamps, const short* yInSamps,
                             short* yOutSamps, int order, int flags, int scaleMode,
                             int* scaleFactor);
VEK_API void vekwCcs2Fft(short* xSamps, short* ySamps, int order, int flags, int scaleMode,
                         int* scaleFactor);
VEK_API void vekwCcs2FftNip(const short* xInSamps, short* xOutSamps, const short* yInSamps,
                            short* yOutSamps, int order, int flags, int scaleMode,
                            int* scaleFactor);

/* Products of two spectra of N = 2^order points in a packed layout:
 * dst = dst * src (2) or dst = srcA * srcB (3). */
VEK_API void veksMpyRCPack2(const float* src, float* dst, int order);
VEK_API void vekdMpyRCPack2(const double* src, double* dst, int order);
VEK_API void veksMpyRCPack3(const float* srcA, const float* srcB, float* dst, int order);
VEK_API void vekdMpyRCPack3(const double* srcA, const double* srcB, double* dst, int order);
VEK_API void veksMpyRCPerm2(const float* src, float* dst, int order);
VEK_API void vekdMpyRCPerm2(const double* src, double* dst, int order);
VEK_API void veksMpyRCPerm3(const float* srcA, const float* srcB, float* dst, int order);
VEK_API void vekdMpyRCPerm3(const double* srcA, const double* srcB, double* dst, int order);
/* 16-bit products: exact products narrowed by the element-wise rules of
 * scaleMode, VEK_AUTO_SCALE with one factor for the whole spectrum. */
VEK_API void vekwMpyRCPack2(const short* src, short* dst, int order, int scaleMode,
                            int* scaleFactor);
VEK_API void vekwMpyRCPack3(const short* srcA, const short* srcB, short* dst, int order,
                            int scaleMode, int* scaleFactor);
VEK_API void vekwMpyRCPerm2(const short* src, short* dst, int order, int scaleMode,
                            int* scaleFactor);
VEK_API void vekwMpyRCPerm3(const short* srcA, const short* srcB, short* dst, int order,
                            int scaleMode, int* scaleFactor);

/* end of Real FFT and packed spectra */

/* ========================================================================
 * DFT and Goertzel
 * ======================================================================== */

/* DFT of any length >= 1 (forward unscaled, inverse scaled by 1/length
 * unless VEK_NoScale). flags: exactly one of VEK_Forw and VEK_Inv;
 * VEK_Init builds the length's table and work buffer, VEK_Free releases the
 * work buffer. src may equal dst. */
VEK_API void vekcDft(const CplxFloat* src, CplxFloat* dst, int length, int flags);
VEK_API void vekzDft(const CplxDouble* src, CplxDouble* dst, int length, int flags);
VEK_API void vekvDft(const CplxShort* src, CplxShort* dst, int length, int flags, int scaleMode,
                     int* scaleFactor);

/* One Goertzel state serves every type: each function uses the member of
 * its type (s and w: .s; c and v: .c; d: .d; z: .z). Fill it with
 * vek?GoertzInit. s2 is the older delay value, s1 the newer one. */
typedef union {
    struct { float rfreq, cos, sin, twoCos, s2, s1; } s;
    struct { float rfreq, cos, sin, twoCos; CplxFloat s2, s1; } c;
    struct { double rfreq, cos, sin, twoCos, s2, s1; } d;
    struct { double rfreq, cos, sin, twoCos; CplxDouble s2, s1; } z;
} GoertzState;

/* Goertzel detector of relative frequency rfreq (0 <= rfreq < 1): the
 * output after N samples at rfreq = k/N is bin k of their forward DFT.
 * Init returns VEK_StatusOk or the status it reported. */
VEK_API int veksGoertzInit(float rfreq, GoertzState* stPtr);
VEK_API int vekcGoertzInit(float rfreq, GoertzState* stPtr);
VEK_API int vekdGoertzInit(double rfreq, GoertzState* stPtr);
VEK_API int vekzGoertzInit(double rfreq, GoertzState* stPtr);
VEK_API int vekwGoertzInit(float rfreq, GoertzState* stPtr);
VEK_API int vekvGoertzInit(float rfreq, GoertzState* stPtr);
VEK_API void veksGoertzReset(GoertzState* stPtr);
VEK_API void vekcGoertzReset(GoertzState* stPtr);
VEK_API void vekdGoertzReset(GoertzState* stPtr);
VEK_API void vekzGoertzReset(GoertzState* stPtr);
VEK_API void vekwGoertzReset(GoertzState* stPtr);
VEK_API void vekvGoertzReset(GoertzState* stPtr);
/* One sample in, the output after it. */
VEK_API CplxFloat veksGoertz(GoertzState* stPtr, float sample);
VEK_API CplxFloat vekcGoertz(GoertzState* stPtr, CplxFloat sample);
VEK_API CplxDouble vekdGoertz(GoertzState* stPtr, double sample);
VEK_API CplxDouble vekzGoertz(GoertzState* stPtr, CplxDouble sample);
VEK_API CplxShort vekwGoertz(GoertzState* stPtr, short sample, int scaleMode, int* scaleFactor);
VEK_API CplxShort vekvGoertz(GoertzState* stPtr, CplxShort sample, int scaleMode,
                             int* scaleFactor);
/* A block in, the output after its last sample. */
VEK_API CplxFloat veksbGoertz(GoertzState* stPtr, const float* inSamps, int len);
VEK_API CplxFloat vekcbGoertz(GoertzState* stPtr, const CplxFloat* inSamps, int len);
VEK_API CplxDouble vekdbGoertz(GoertzState* stPtr, const double* inSamps, int len);
VEK_API CplxDouble vekzbGoertz(GoertzState* stPtr, const CplxDouble* inSamps, int len);
VEK_API CplxShort vekwbGoertz(GoertzState* stPtr, const short* inSamps, int len, int scaleMode,
                              int* scaleFactor);
VEK_API CplxShort vekvbGoertz(GoertzState* stPtr, const CplxShort* inSamps, int len,
                              int scaleMode, int* scaleFactor);

/* end of DFT and Goertzel */

/* ========================================================================
 * DCT
 * ======================================================================== */

/* Orthonormal DCT of any length len >= 1: forward (VEK_Forw) type II,
 * X[k] = c(k) * sum x[n] cos(pi (2n+1) k / 2len) with c(0) = 1/sqrt(len)
 * and c(k) = sqrt(2/len), inverse (VEK_Inv) type III, so that the inverse
 * restores the input. Exactly one of the two flags; flags == VEK_Free alone
 * releases the thread's DCT tables. src may equal dst. */
VEK_API void veksDct(const float* src, float* dst, int len, int flags);
VEK_API void vekdDct(const double* src, double* dst, int len, int flags);
/* 16 bits through float; the results are rounded to nearest and saturated. */
VEK_API void vekwDct(const short* src, short* dst, int len, int flags);

/* end of DCT */

#ifdef __cplusplus
}
#endif

#endif /* VEK_H */
