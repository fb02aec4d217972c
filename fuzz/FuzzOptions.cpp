// FuzzOptions.cpp -- what every fuzzer asks of the address sanitizer
// A small quarantine and short stacks: with the defaults half of the time goes into fresh pages.
extern "C" const char *__asan_default_options()
{
    return "quarantine_size_mb=8:malloc_context_size=4";
}
