// The other process of the tests with two. It never cleans up after itself, as a killed process would not, unless its
// last argument is "leave"; with "return" it returns from main and cleans nothing up itself, with "kill" it is killed.
//
//   utils_peer instance NAME            exit code 0 when another instance runs, 1 when not
//   utils_peer memory NAME SIZE OLD NEW exit code 0 when the memory held OLD; it holds NEW then. 1 when it held
//                                       something else, 2 when it cannot be had
//   utils_peer sleep LIBRARY            ends while the library sleeps
//   utils_peer identifiers              exit code: the lower digits of its first two identifiers, one after another

#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/shared_memory.h>
#include <zentara/utils/shared_memory_manager.h>
#include <zentara/utils/unique_instance.h>

#include <csignal>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

int end(const Words& words, int code) {
    if (words.back() == "leave" || words.back() == "return")
        return code;
#ifdef SIGKILL
    if (words.back() == "kill")
        std::raise(SIGKILL);
#endif
    std::_Exit(code);
}

int holdInstance(const Words& words) {
    const Zentara::Utils::UniqueInstance instance(words[1].c_str());
    return end(words, instance.isAnotherInstanceRunning() ? 0 : 1);
}

int exchangeMemory(const Words& words) {
    auto* memory = Zentara::Utils::SharedMemory::getSharedMemory();
    const auto size = static_cast<unsigned int>(std::stoul(words[2]));
    const int old = std::stoi(words[3]);
    int found = -1;
    try {
        auto* cell = static_cast<int*>(memory->getPtr(words[1], 0, size, true));
        found = *cell;
        *cell = std::stoi(words[4]);
    } catch (const std::bad_alloc&) {
        return end(words, 2);
    }
    const int code = end(words, found == old ? 0 : 1);
    if (words.back() == "leave")
        Zentara::Utils::SharedMemory::release();
    return code;
}

int takeIdentifiers() {
    using Zentara::Utils::SharedMemoryManager;
    const auto nextNumber = [] { return static_cast<int>(SharedMemoryManager::getUniqueID() & 0xFFFFFFFF); };
    const int first = nextNumber();
    return 10 * first + nextNumber();
}

int endAsleep(const Words& words) {
    void* const library = Zentara::Utils::loadSharedLibrary(words[1], 0);
    if (void* const sleep = Zentara::Utils::getFunction(library, "sleepAtTheEnd"))
        reinterpret_cast<void (*)()>(sleep)();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const Words words(argv + 1, argv + argc);
    if (words.size() >= 2 && words[0] == "instance")
        return holdInstance(words);
    if (words.size() >= 5 && words[0] == "memory")
        return exchangeMemory(words);
    if (words.size() == 2 && words[0] == "sleep")
        return endAsleep(words);
    if (words.size() == 1 && words[0] == "identifiers")
        return takeIdentifiers();
    return 64;
}
