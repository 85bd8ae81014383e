# nevqos_include_root( target folder... )
#
# Gives the target an include root that holds only the named source folders (paths from the top
# of the tree, such as NevQos/types or sim/chip), as links under the build tree. A layer's sources
# then find the headers of their own folders and of the layers they link, and nothing else: an
# include that reaches upward names a file the compiler cannot find.
# The platform's and the simulator's folders are included under the prefix NevQos/, as they are
# installed (NevQos/platform/zub/Entity.h, NevQos/sim/chip/Tcam.h), so that a project that uses
# the package finds every header under that one name; other folders (bench/support) by their path.
function( nevqos_include_root target )
   set( root ${PROJECT_BINARY_DIR}/include-roots/${target} )
   # Made afresh on every configure, so that a folder taken off the list loses its link.
   file( REMOVE_RECURSE ${root} )
   foreach( folder IN LISTS ARGN )
      if( NOT IS_DIRECTORY ${PROJECT_SOURCE_DIR}/${folder} )
         message( FATAL_ERROR "nevqos_include_root( ${target} ): no folder ${folder}" )
      endif()
      set( name ${folder} )
      if( folder MATCHES "^(platform|sim)(/|$)" )
         set( name NevQos/${folder} )
      endif()
      cmake_path( GET name PARENT_PATH parent )
      file( MAKE_DIRECTORY ${root}/${parent} )
      file( CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${root}/${name} SYMBOLIC )
   endforeach()
   target_include_directories( ${target} PUBLIC $<BUILD_INTERFACE:${root}> )
endfunction()
