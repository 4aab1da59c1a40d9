// The composition root: the one place where adapters meet logic. Builds what the command needs, and nothing more, so
// that a command in a terminal starts at once.
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include "assistant.h"
#include "base/environment.h"
#include "base/error.h"
#include "base/files.h"
#include "base/run_loop.h"
#include "base/secure_random.h"
#include "base/worker_executor.h"
#include "cli/answer_commands.h"
#include "cli/arguments.h"
#include "cli/config_command.h"
#include "cli/do_command.h"
#include "cli/doctor_command.h"
#include "cli/history_command.h"
#include "cli/interruption.h"
#include "cli/recognize_command.h"
#include "cli/terminal.h"
#include "language/ai_service.h"
#include "language/conversation_prompts.h"
#include "platform/linux/desktop/session_bus_assistant.h"
#include "platform/linux/desktop/session_inspection.h"
#include "platform/linux/qt/window_system.h"
#include "platform/linux/recognition/linux_image_decoder.h"
#include "platform/linux/recognition/linux_language_identifier.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"
#include "recognition/vision_ocr_engine.h"
#include "services.h"

namespace ovrin {

namespace {

constexpr int exitUsage = 2;

// One invocation from the command line.
class CommandLine {
public:
    explicit CommandLine(cli::Terminal& terminal) : terminal_(terminal) {}

    int operator()(const cli::ShowHelp&) {
        terminal_.write(cli::helpText());
        return EXIT_SUCCESS;
    }

    int operator()(const cli::ShowVersion&) {
        terminal_.write("ovrin " OVRIN_VERSION "\n");
        return EXIT_SUCCESS;
    }

    int operator()(const cli::StartAssistant& command) { return runAssistant(command.launch); }

    int operator()(const cli::Recognize& command) {
        const cli::Interruption interruption;
        RunLoop loop;
        const LinuxImageDecoder decoder;
        const LinuxLanguageIdentifier identifier;
        OnnxTextRecognizer recognizer(RecognitionFiles::ofThisProgram());
        WorkerExecutor workers(1);
        VisionOCREngine engine({"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}, recognizer, identifier, workers,
                               std::chrono::system_clock::now);
        std::unique_ptr<HistoryStore> history;
        const auto openedHistory = [&history]() -> HistoryStore& {
            if (!history) history = openHistory();
            return *history;
        };
        return interruptible(interruption, [&] {
            return cli::recognize(command, {.terminal = terminal_,
                                            .loop = loop,
                                            .decoder = decoder,
                                            .engine = engine,
                                            .history = openedHistory,
                                            .stop = interruption.token()});
        });
    }

    int operator()(const cli::ListHistory& command) { return cli::listHistory(command, *openHistory(), terminal_); }

    int operator()(const cli::Translate& command) {
        const cli::Interruption interruption;
        RunLoop loop;
        const Settings settings(interruption.token());
        const LinuxLanguageIdentifier identifier;
        const ModelServices model(settings);
        const TranslationService service = model.translation(identifier);
        return interruptible(interruption, [&] {
            return cli::translate(command, service, settings.config.targetLanguage(),
                                  {.terminal = terminal_, .loop = loop, .stop = interruption.token()});
        });
    }

    int operator()(const cli::Ask& command) {
        const cli::Interruption interruption;
        RunLoop loop;
        const Settings settings(interruption.token());
        const ModelServices model(settings);
        const ConversationPrompts prompts(Environment::ofProcess, secureRandomIndex);
        const AIService service(model.client);
        return interruptible(interruption, [&] {
            return cli::ask(command, service, prompts, settings.config.targetLanguage(),
                            {.terminal = terminal_, .loop = loop, .stop = interruption.token()});
        });
    }

    int operator()(const cli::Do& command) {
        SessionBusAssistant assistant;
        return cli::performInAssistant(command, assistant);
    }

    int operator()(const cli::Doctor& command) {
        OnnxTextRecognizer recognizer(RecognitionFiles::ofThisProgram());
        const WindowPath windows = hasNativeWindows() ? WindowPath::native : WindowPath::throughXWayland;
        return cli::showCapabilities(command, inspectSession(windows, recognizer), terminal_);
    }

    int operator()(const cli::ConfigGet& command) {
        const Settings settings;
        return cli::showPreferences(command, settings.defaults, terminal_);
    }
    int operator()(const cli::ConfigSet& command) {
        Settings settings;
        return told(cli::changePreference(command, settings.defaults));
    }
    int operator()(const cli::ConfigUnset& command) {
        Settings settings;
        return told(cli::removePreference(command, settings.defaults));
    }
    int operator()(const cli::ConfigSetKey&) {
        const cli::Interruption interruption;
        Settings settings(interruption.token());
        return interruptible(
            interruption, [&] { return told(cli::storeAPIKey(settings.keychain, terminal_, interruption.token())); });
    }
    int operator()(const cli::ConfigUnsetKey&) {
        Settings settings;
        return told(cli::removeAPIKey(settings.keychain));
    }

private:
    // Lets the running assistant know of what has been stored; it is of no concern here whether there is one.
    static int told(int status) {
        try {
            SessionBusAssistant(std::chrono::seconds(1)).perform("reload");
        } catch (const Error&) {
            return status;
        }
        return status;
    }

    template <typename Work>
    static int interruptible(const cli::Interruption& interruption, const Work& work) {
        try {
            return work();
        } catch (...) {
            // What fails once the user has asked for an end fails because of it.
            if (interruption.exitStatus() != 0) return interruption.exitStatus();
            throw;
        }
    }

    cli::Terminal& terminal_;
};

// A dump of the memory would hold the API key. The kernel ignores the limit where it pipes dumps to a program; an empty
// filter leaves nothing in those. The process stays dumpable, because portals read its /proc entry to know who calls.
void forbidCoreDumps() {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    std::ofstream("/proc/self/coredump_filter") << "0";
}

// A standard channel that is closed would lend its number to the first file or socket that is opened. In its stand
// everything that reads or writes it fails, as it should.
void occupyClosedChannels() {
    for (const int channel : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(channel, F_GETFD) == -1) ::open("/dev/null", channel == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

int run(const std::vector<std::string>& words) {
    cli::Terminal terminal(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO);
    try {
        return std::visit(CommandLine(terminal), cli::parseArguments(words));
    } catch (const cli::UsageError& error) {
        terminal.writeError(std::string("ovrin: ") + error.what());
        terminal.writeError("Try 'ovrin --help'.");
        return exitUsage;
    } catch (const cli::OutputClosed&) {
        return EXIT_FAILURE;
    } catch (const files::FileError& error) {
        terminal.writeError(error.systemDescription());
        return EXIT_FAILURE;
    } catch (...) {
        terminal.writeError(errorDescription(std::current_exception()));
        return EXIT_FAILURE;
    }
}

}  // namespace

}  // namespace ovrin

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    ovrin::occupyClosedChannels();
    ovrin::forbidCoreDumps();
    ovrin::OnnxTextRecognizer::forbidTelemetry();
    ovrin::Environment::withholdSecretsFromChildren();
    // curl reads host names of other scripts in the encoding of the locale; all text here is UTF-8.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    // Few heaps, because what recognition leaves behind in many could not be given back; two, because its two threads
    // would wait for each other at one.
    mallopt(M_ARENA_MAX, 2);
    return ovrin::run({argv + 1, argv + argc});
}
