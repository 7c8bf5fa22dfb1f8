# XUN_TSAN=ON builds every target of the project with ThreadSanitizer, for the
# test that calls the lookups and conversions from several threads at once
# (tests/registry/test_concurrency.cpp). A program in which a race was
# reported exits with a failure status, so the test fails.
#
# Included from the top CMakeLists.txt before any target is defined.
option(XUN_TSAN "Build every target with ThreadSanitizer" OFF)

if(XUN_TSAN)
  if(XUN_SANITIZE)
    message(FATAL_ERROR "XUN_TSAN and XUN_SANITIZE cannot be combined: build them in separate trees")
  endif()
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
