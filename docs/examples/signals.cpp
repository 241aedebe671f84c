#include <kit.h>

#include <csignal>
#include <cstring>
#include <future>
#include <iostream>

int main() {
    std::promise<void> busy;
    std::promise<void> go;
    kit::SignalThread signals({SIGTERM, SIGHUP, SIGQUIT}, [&](int number) {
        if (number == SIGQUIT) {  // keeps the signal thread busy
            busy.set_value();
            go.get_future().wait();
        }
        std::cout << strsignal(number) << "\n";
    });
    std::raise(SIGQUIT);
    busy.get_future().wait();
    std::raise(SIGTERM);  // by number it would be lost:
    std::raise(SIGHUP);   // the library would report this one twice
    go.set_value();
    signals.Stop();
}
