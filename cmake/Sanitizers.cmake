# AddressSanitizer + UndefinedBehaviorSanitizer for every target of the build.
set( NEVQOS_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all
     -fno-omit-frame-pointer )
add_compile_options( ${NEVQOS_SANITIZER_FLAGS} )
# Line tables alone: the reports still name each function, file and line, and full debug
# information took an eighth of this build's time and most of its disk (the dev preset keeps it,
# for a debugger).
add_compile_options( -g1 )
add_link_options( -fsanitize=address,undefined )
