// What every client of the comparison shares: its task, and the account of what it has read and used.
#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace peers {

// PROGRAM receive|send PORT COUNT [VARIANT]
struct Task {
    Task(int argc, char** argv) {
        if (argc < 4) std::exit(2);
        receives = std::strcmp(argv[1], "receive") == 0;
        port = std::atoi(argv[2]);
        count = std::atoi(argv[3]);
        if (argc > 4) variant = argv[4];
    }
    bool receives = false;
    int port = 0;
    int count = 0;
    std::string variant;
};

// The text of the i-th message sent: something to escape, and something that is not ASCII.
inline std::string Body(int i) {
    return "Message " + std::to_string(i) +
           ": \"fish & chips\" cost < 10 \xE2\x82\xAC, it's > 5; the rest is plain text of no interest.";
}
inline std::string Addressee(int i) { return "friend" + std::to_string(i % 200) + "@localhost"; }

struct Tally {
    void Begin() { begin = Seconds(); }
    void Message(std::size_t from, std::size_t body, bool isChat) {
        ++messages, characters += from + body, chats += isChat ? 1 : 0;
    }
    void Presence(std::size_t from, bool isAway) { ++presences, characters += from, away += isAway ? 1 : 0; }
    void Contact(bool isWhole) { contacts += isWhole ? 1 : 0; }

    // The last message was read. Prints the account, and leaves without tidying up.
    [[noreturn]] void End() const {
        std::printf("%.6f %ld %d %d %d %d %d %zu\n", Seconds() - begin, PeakKilobytes(), messages, chats,
                    presences, away, contacts, characters);
        std::fflush(stdout);
        _exit(0);
    }

private:
    static double Seconds() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    }
    // Of this program alone: what getrusage tells begins with the shell's.
    static long PeakKilobytes() {
        long peak = 0;
        char line[256];
        std::FILE* file = std::fopen("/proc/self/status", "r");
        while (file != nullptr && std::fgets(line, sizeof line, file) != nullptr) {
            if (std::sscanf(line, "VmHWM: %ld", &peak) == 1) break;
        }
        if (file != nullptr) std::fclose(file);
        return peak;
    }

    double begin = 0;
    int messages = 0;
    int chats = 0;
    int presences = 0;
    int away = 0;
    int contacts = 0;
    std::size_t characters = 0;  // bytes of UTF-8
};

}  // namespace peers
