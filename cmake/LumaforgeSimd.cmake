# Each instruction-set variant lives in its own file named *_<level>.cc and is
# compiled with that level's flags only, so no wider instruction can reach a
# path that runs on a smaller processor.
set(LUMAFORGE_SIMD_FLAGS_sse -msse2)  # x86-64 has SSE2 wherever it has SSE
set(LUMAFORGE_SIMD_FLAGS_sse2 -msse2)
set(LUMAFORGE_SIMD_FLAGS_ssse3 -mssse3)
set(LUMAFORGE_SIMD_FLAGS_sse41 -msse4.1)
set(LUMAFORGE_SIMD_FLAGS_sse42 -msse4.2)
set(LUMAFORGE_SIMD_FLAGS_avx -mavx)
set(LUMAFORGE_SIMD_FLAGS_avx2 -mavx2)

function(lumaforge_apply_simd_flags target)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    if(source MATCHES "_(sse|sse2|ssse3|sse41|sse42|avx|avx2)\\.cc$")
      set_source_files_properties(${source} TARGET_DIRECTORY ${target}
        PROPERTIES COMPILE_OPTIONS "${LUMAFORGE_SIMD_FLAGS_${CMAKE_MATCH_1}}")
    endif()
  endforeach()
endfunction()
