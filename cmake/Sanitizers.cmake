# AddressSanitizer + UndefinedBehaviorSanitizer for every target of the build.
set( NEVQOS_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all
     -fno-omit-frame-pointer )
add_compile_options( ${NEVQOS_SANITIZER_FLAGS} )
add_link_options( -fsanitize=address,undefined )
