// A program that is started for a test or a demonstration and ends with it: at the end of its scope, and also when the
// process that started it dies without a word. It leads a process group of its own, so that what it starts ends too.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace ovrin {

class ChildProcess {
public:
    enum class Input { ends, staysOpen };  // after what Setup::input holds
    enum class Output { lines, log };      // for readLine(), or into the log as well

    struct Setup {
        std::vector<std::string> arguments;       // the program first, looked up in PATH
        std::vector<std::string> environment;     // "NAME=value": the whole of it
        std::string input{};                      // what it reads from standard input first
        Input afterInput = Input::ends;           // staysOpen: see write()
        std::filesystem::path log = "/dev/null";  // standard error is added to this file
        Output output = Output::lines;
    };

    // Whether a program of this name is in PATH.
    static bool isInstalled(const std::string& program);

    // Throws Error when the program cannot be started, for example because it is not installed.
    explicit ChildProcess(const Setup& setup);
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return id_; }
    bool isRunning() const;

    // The next line of its standard output without the line end; what there is at the end of it, empty after that.
    // Throws Error when it stays silent for longer than the patience.
    static constexpr std::chrono::seconds defaultPatience{60};
    std::string readLine(std::chrono::milliseconds patience = defaultPatience);

    // The next bytes of its standard output, as many as asked for unless it ends before. Throws Error as readLine()
    // does.
    std::string read(std::size_t size);

    // Nobody reads its standard output from now on.
    void closeOutput();

    // Adds to its standard input, which has to have stayed open. Throws Error when it no longer reads.
    void write(std::string_view bytes) const;

    // Sends a signal to it alone.
    void signal(int number) const;

    // Blocks until it has ended; the exit status, or minus the signal that ended it. Throws Error as readLine() does.
    int waitForEnd(std::chrono::milliseconds patience = defaultPatience);

    // Asks it and its children to end, and kills what is left of them after a moment.
    void terminate();
    // Kills it and its children.
    void stop();

private:
    bool waitForExit(std::chrono::milliseconds patience) const;
    int killGroupAndReap();
    bool receive(std::chrono::milliseconds patience);  // false at the end of its output
    void closeDescriptors();

    std::string name_;
    pid_t id_ = -1;
    int process_ = -1;  // a descriptor that becomes readable when the program has ended
    int input_ = -1;
    int output_ = -1;
    std::string received_;
};

}  // namespace ovrin
