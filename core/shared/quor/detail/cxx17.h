#ifndef QUOR_DETAIL_CXX17_H
#define QUOR_DETAIL_CXX17_H

// Included first by headers that an older dialect cannot read, so that this line comes first, too.
#if __cplusplus < 201703L
#error "libzelvarquor needs C++17: compile with -std=c++17 or later"
#endif

#endif
