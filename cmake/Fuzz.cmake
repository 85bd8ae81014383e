# libFuzzer builds (clang only): every target is compiled with the fuzzer's coverage hooks and
# AddressSanitizer + UndefinedBehaviorSanitizer; only the fuzz targets link libFuzzer itself
# (fuzz/CMakeLists.txt), the other programs just the sanitizer runtimes.
if( NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" )
   message( FATAL_ERROR "NEVQOS_FUZZ needs clang (libFuzzer); configure with the fuzz preset" )
endif()
# An undefined-behaviour report aborts, so that libFuzzer records it as a crash.
add_compile_options( -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                     -fno-omit-frame-pointer )
add_link_options( -fsanitize=address,undefined )
# Line tables alone, as in the sanitizer build: a finding's stack names functions and lines.
add_compile_options( -g1 )
