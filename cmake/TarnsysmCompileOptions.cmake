# Tarnsysm: compiler settings shared by the library, its tests, benchmarks and tools.
# Floating-point behaviour is frozen so that borderline tolerance decisions agree across compilers.

function(tarnsysm_apply_compile_options target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -ffp-contract=off)
    if(TARNSYSM_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(TARNSYSM_SANITIZE)
      target_compile_options(${target} PRIVATE
        -fsanitize=${TARNSYSM_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
      target_link_options(${target} PRIVATE -fsanitize=${TARNSYSM_SANITIZE})
    endif()
  elseif(MSVC)
    target_compile_options(${target} PRIVATE /W4 /fp:precise)
    if(TARNSYSM_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE /WX)
    endif()
  endif()
endfunction()
