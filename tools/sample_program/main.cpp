// Some other program of the user's for demonstrations and tests: ovrin_sample_program page|editor
//
// It shows the demonstration page or a text editor, and does what a user would do in it when told to on standard input.
// Each line there is a JSON object; each is answered with one on standard output:
//
//   {"do":"lines"}                     {"lines":[{"text":...,"x":...,"y":...,"width":...,"height":...}, ...]}, of the
//   page,
//                                      in its window
//   {"do":"selectText","text":...}     types the text into the editor and selects it all
//   {"do":"text"}                      {"text":...}, of the editor
//   {"do":"copyText","text":...}       puts it on the clipboard
//   {"do":"copyPicture","line":N}      puts a picture of the page's line N on the clipboard
//   {"do":"clearClipboard"}
#include <QApplication>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QSocketNotifier>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>
#include <unistd.h>

#include "base/json.h"
#include "sample_program/page_view.h"

namespace ovrin {
namespace {

class Commands {
public:
    Commands(PageView* page, QPlainTextEdit* editor) : page_(page), editor_(editor) {}

    json::Value answer(const json::Value& command) {
        const std::string name = json::string(command, "do").value_or("");
        if (name == "lines") return {{"lines", lines()}};
        if (name == "text") return {{"text", editor_->toPlainText().toStdString()}};
        if (name == "selectText") {
            editor_->setPlainText(textOf(command));
            editor_->selectAll();
        } else if (name == "copyText") {
            QGuiApplication::clipboard()->setText(textOf(command));
        } else if (name == "copyPicture") {
            const auto line = static_cast<std::size_t>(json::integer(command, "line").value_or(0));
            QGuiApplication::clipboard()->setImage(page_->grab(page_->lines().at(line).area).toImage());
        } else if (name == "clearClipboard") {
            QGuiApplication::clipboard()->clear();
        } else {
            return {{"error", "unknown command " + name}};
        }
        return {{"done", name}};
    }

private:
    static QString textOf(const json::Value& command) {
        return QString::fromStdString(json::string(command, "text").value_or(""));
    }

    json::Value lines() const {
        json::Value lines = json::Value::array();
        for (const PageView::Line& line : page_->lines()) {
            lines.push_back({{"text", line.text.toStdString()},
                             {"x", line.area.x()},
                             {"y", line.area.y()},
                             {"width", line.area.width()},
                             {"height", line.area.height()}});
        }
        return lines;
    }

    PageView* page_;
    QPlainTextEdit* editor_;
};

// Lines of standard input as they come; the end of it ends the program.
void listen(QApplication& application, Commands& commands) {
    auto* const notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &application);
    QObject::connect(
        notifier, &QSocketNotifier::activated, &application, [&commands, received = std::string()]() mutable {
            std::array<char, 4096> buffer{};
            const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
            if (count <= 0) return QApplication::quit();
            received.append(buffer.data(), static_cast<std::size_t>(count));
            for (std::size_t end = 0; (end = received.find('\n')) != std::string::npos; received.erase(0, end + 1)) {
                const auto command = json::parse(received.substr(0, end));
                std::cout << json::encoded(commands.answer(command.value_or(json::Value()))) << std::endl;
            }
        });
}

int run(QApplication& application, const QString& kind) {
    PageView page;
    QPlainTextEdit editor;
    editor.setWindowTitle(QStringLiteral("Notes"));
    editor.resize(640, 360);
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(18);
    editor.setFont(font);
    Commands commands(&page, &editor);
    listen(application, commands);
    if (kind == QStringLiteral("page")) {
        page.show();
    } else {
        editor.show();
    }
    return QApplication::exec();
}

}  // namespace
}  // namespace ovrin

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || !QStringList{"page", "editor"}.contains(arguments[1])) {
        std::cerr << "ovrin_sample_program page|editor\n";
        return 2;
    }
    return ovrin::run(application, arguments[1]);
}
