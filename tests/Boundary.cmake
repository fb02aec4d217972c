# The headers of the module boundary compile alone, as strict C11 and C++20, with the compiler of the build and with
# clang where there is one
set(boundary_options -pedantic -Wall -Wextra -Werror)
find_program(CLANG_COMPILER clang)
foreach(header module control sound hosttypes)
    add_library(boundary_c11_${header} OBJECT boundary_c11.c)
    set_target_properties(boundary_c11_${header} PROPERTIES C_EXTENSIONS OFF)
    add_library(boundary_cpp20_${header} OBJECT boundary_cpp20.cpp)
    foreach(language c11 cpp20)
        target_include_directories(boundary_${language}_${header} PRIVATE ${CMAKE_SOURCE_DIR}/include)
        target_compile_definitions(boundary_${language}_${header} PRIVATE BOUNDARY_HEADER="${header}.h")
        target_compile_options(boundary_${language}_${header} PRIVATE ${boundary_options})
    endforeach()
    if(CLANG_COMPILER)
        set(clang_options ${boundary_options} -fsyntax-only -I${CMAKE_SOURCE_DIR}/include
            -DBOUNDARY_HEADER="${header}.h")
        add_test(NAME Boundary.ClangTakes_${header}_AsC11
            COMMAND ${CLANG_COMPILER} -std=c11 ${clang_options} ${CMAKE_CURRENT_SOURCE_DIR}/boundary_c11.c)
        add_test(NAME Boundary.ClangTakes_${header}_AsCpp20
            COMMAND ${CLANG_COMPILER} -std=c++20 ${clang_options} ${CMAKE_CURRENT_SOURCE_DIR}/boundary_cpp20.cpp)
    endif()
endforeach()
