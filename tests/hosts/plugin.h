#ifndef QUOR_TESTS_PLUGIN_H
#define QUOR_TESTS_PLUGIN_H

struct Seen {
    const void* trace;
    const void* log;
    const void* version;
    bool medium;
    bool high;
};

extern "C" __attribute__((visibility("default"))) Seen Look();

#endif
