# Compiler flags of the library, its per-ISA kernels and its tests.

set(VEK_WARNINGS -Wall -Wextra -Wshadow -Wundef)
if(VEK_WERROR)
  list(APPEND VEK_WARNINGS -Werror)
endif()

# Results must not depend on contraction into FMA (kernels that want FMA
# say so with intrinsics), and the export names are not interposed inside
# the library.
set(VEK_LIBRARY_FLAGS -ffp-contract=off -fno-exceptions -fno-rtti)
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fno-semantic-interposition VEK_HAS_NO_INTERPOSITION)
if(VEK_HAS_NO_INTERPOSITION)
  list(APPEND VEK_LIBRARY_FLAGS -fno-semantic-interposition)
endif()

set(VEK_X86 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i[3-6]86|x86)$")
  set(VEK_X86 ON)
endif()

# 32-bit x86 keeps its floating point on SSE2 so that it rounds like x86-64.
if(VEK_X86 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_options(-msse2 -mfpmath=sse)
endif()

set(VEK_LIBRARY_LINK_FLAGS)
if(WIN32)
  # No runtime DLLs beside vek.dll.
  list(APPEND VEK_LIBRARY_LINK_FLAGS -static-libgcc -static-libstdc++)
elseif(NOT APPLE)
  list(APPEND VEK_LIBRARY_LINK_FLAGS -Wl,-z,defs)
endif()

# Per-ISA kernel files: name_sse2.cpp, name_avx2.cpp, name_avx512.cpp.
set(VEK_ISA_DEFINITIONS)
set(VEK_AVX2_FLAGS -mavx2 -mfma -mbmi2 -mf16c)
set(VEK_AVX512_FLAGS ${VEK_AVX2_FLAGS} -mavx512f -mavx512dq -mavx512bw -mavx512vl
  -mprefer-vector-width=512)
if(WIN32)
  # The Windows ABI keeps the stack 16-byte aligned: spills of 32- and
  # 64-byte vectors must not use aligned moves.
  list(APPEND VEK_AVX2_FLAGS -Wa,-muse-unaligned-vector-move)
  list(APPEND VEK_AVX512_FLAGS -Wa,-muse-unaligned-vector-move)
endif()
if(VEK_X86)
  list(APPEND VEK_ISA_DEFINITIONS VEK_HAVE_ISA_BUILDS=1)
endif()

function(vek_set_isa_flags sources)
  if(NOT VEK_X86)
    return()
  endif()
  foreach(src IN LISTS sources)
    if(src MATCHES "_avx512\\.cpp$")
      set_source_files_properties(${src} PROPERTIES COMPILE_OPTIONS "${VEK_AVX512_FLAGS}")
    elseif(src MATCHES "_avx2\\.cpp$")
      set_source_files_properties(${src} PROPERTIES COMPILE_OPTIONS "${VEK_AVX2_FLAGS}")
    endif()
  endforeach()
endfunction()

function(vek_sanitize target)
  if(VEK_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VEK_SANITIZE} -fno-omit-frame-pointer
      -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${VEK_SANITIZE})
  endif()
endfunction()
