# Warnings are errors everywhere in the project.
function( nevqos_warnings target )
   target_compile_options( ${target} PRIVATE
      -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Wcast-align
      -Wunused -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough )
endfunction()
