# XUN_SANITIZE=ON builds every target of the project (the core, libxun.so,
# the tools and every test program) with AddressSanitizer and
# UndefinedBehaviorSanitizer. Any report ends the program at once
# (-fno-sanitize-recover=all), so a test that triggers one fails.
#
#   cmake -S . -B build-asan -DXUN_SANITIZE=ON -DXUN_WERROR=ON
#   cmake --build build-asan -j2 && ctest --test-dir build-asan -j2
#
# Included from the top CMakeLists.txt before any target is defined: the
# options below apply to every target created after them.
option(XUN_SANITIZE "Build every target with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

if(XUN_SANITIZE)
  set(XUN_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all)
  add_compile_options(${XUN_SANITIZE_FLAGS} -fno-omit-frame-pointer)
  add_link_options(${XUN_SANITIZE_FLAGS})
  # GCC's -Wmaybe-uninitialized gives false positives on instrumented code
  # (for example inside <regex>); the normal build keeps the warning.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()

  # Run-time options for every test that ctest starts. ctest includes this
  # file before it runs anything, and the tests inherit its environment;
  # options already in the environment come last and so take precedence.
  #
  # Leak detection is off here: the registries own every unit, item type and
  # filter until the process ends, and their containers are destroyed at exit
  # without freeing them (only the containers' own nodes go), so every test
  # that registers anything would show those objects as leaked. Leaks are
  # checked where they can be told apart from that: by the memcheck test
  # (tests/valgrind, with a suppression file that names each object kept on
  # purpose) and by the fuzz targets (fuzz/), which empty the registries after
  # each input.
  set(XUN_SANITIZE_ENV_FILE ${CMAKE_BINARY_DIR}/xun_sanitize_env.cmake)
  file(WRITE ${XUN_SANITIZE_ENV_FILE}
    "set(ENV{ASAN_OPTIONS} \"detect_leaks=0:check_initialization_order=1:strict_init_order=1:detect_stack_use_after_return=1:strict_string_checks=1:\$ENV{ASAN_OPTIONS}\")\n"
    "set(ENV{UBSAN_OPTIONS} \"print_stacktrace=1:\$ENV{UBSAN_OPTIONS}\")\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${XUN_SANITIZE_ENV_FILE})
endif()
