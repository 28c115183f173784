# ROUTERADVT_SANITIZE and ROUTERADVT_LIBFUZZER, for everything that is built. A finding always ends the program.

if(ROUTERADVT_SANITIZE)
  add_compile_options(-fsanitize=${ROUTERADVT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ROUTERADVT_SANITIZE})

  # The runtimes of gcc 12 and clang 14 stop at random where the kernel randomizes more than 28 bits of a mapping's
  # address; tests then run without that randomization, if they may.
  if(EXISTS /proc/sys/vm/mmap_rnd_bits)
    file(READ /proc/sys/vm/mmap_rnd_bits random_bits)
    find_program(SETARCH setarch)
    mark_as_advanced(SETARCH)
    if(SETARCH AND random_bits GREATER 28)
      execute_process(COMMAND ${SETARCH} -R true RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
      if(NOT failed)
        set(CMAKE_CROSSCOMPILING_EMULATOR ${SETARCH} -R)
      endif()
    endif()
  endif()
endif()

if(ROUTERADVT_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
