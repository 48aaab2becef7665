// What the leak sanitizer lets pass: the font library's cache, which goes with the process. A test of the core that
// draws text keeps its application object to the end (Application.h).
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig";
}
