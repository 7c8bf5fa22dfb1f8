/* libxun.so is the core archive linked whole; this file only gives the shared
   library target a source of its own. */
typedef int xun_shared_library_translation_unit_;
