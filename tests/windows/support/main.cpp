// The test program of the component: PROGRAM [gtest options] COMPONENT [PORT...]
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/windows/support/Component.h"

namespace windowstest {
namespace {

HMODULE loaded = nullptr;

}  // namespace

void Component::Load(const std::wstring& path) { loaded = LoadLibraryW(path.c_str()); }

std::vector<int>& Ports() {
    static std::vector<int> ports;
    return ports;
}

FARPROC Component::Find(const char* name) { return GetProcAddress(loaded, name); }

}  // namespace windowstest

int main(int count, char** values) {
    using windowstest::Component;
    testing::InitGoogleTest(&count, values);
    if (count < 2) return 2;
    for (int i = 2; i < count; ++i) windowstest::Ports().push_back(atoi(values[i]));
    const std::string path = values[1];
    CoInitialize(nullptr);
    Component::Load(std::wstring(path.begin(), path.end()));
    if (FAILED(Component::Register())) {
        printf("cannot register %s\n", values[1]);
        return 2;
    }
    const bool passed = RUN_ALL_TESTS() == 0;
    const bool isUnused = Component::IsUnused();
    if (!isUnused) printf("An object of the component is left.\n");
    CoUninitialize();
    return passed && isUnused ? 0 : 1;
}
