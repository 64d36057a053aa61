/* The public header compiles as C89 and its types have their C layouts. */
#include <stddef.h>

#include "vek.h"

typedef char check_cplx_float[sizeof(CplxFloat) == 8 ? 1 : -1];
typedef char check_cplx_double[sizeof(CplxDouble) == 16 ? 1 : -1];
typedef char check_cplx_short[sizeof(CplxShort) == 4 ? 1 : -1];
typedef char check_cplx_int[sizeof(CplxInt) == 8 ? 1 : -1];
typedef char check_im_offset[offsetof(CplxShort, im) == 2 ? 1 : -1];

int vektest_c_header_probe(void);
int vektest_c_header_probe(void) {
    ErrorReportFunc fn = vekRedirectError(vekNulDevReport);
    int mode = vekGetErrMode();
    float* p = veksMalloc(4);
    vekFree(p);
    vekRedirectError(fn);
    return mode == VEK_ErrorModeLeaf && vekGetLibVersion()->major == 4;
}
