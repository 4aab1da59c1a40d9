#include "platform/linux/qt/qt_speech_synthesizer.h"

#include <QLocale>
#include <QTextToSpeech>
#include <algorithm>

namespace ovrin {

namespace {

// The toolkit counts from -1 to 1 with the ordinary speed in the middle.
double toolkitRate(double rate) {
    return std::clamp(2 * rate - 1, -1.0, 1.0);
}

// A voice of the language, wherever it is spoken; the default one where there is none.
void chooseVoice(QTextToSpeech& engine, const std::string& language) {
    const QLocale wanted(QString::fromStdString(language).replace('-', '_'));
    const QList<QLocale> locales = engine.availableLocales();
    const auto spoken =
        std::ranges::find_if(locales, [&](const QLocale& locale) { return locale.language() == wanted.language(); });
    if (locales.contains(wanted)) {
        engine.setLocale(wanted);
    } else if (spoken != locales.end()) {
        engine.setLocale(*spoken);
    }
}

}  // namespace

QtSpeechSynthesizer::QtSpeechSynthesizer() = default;

QtSpeechSynthesizer::~QtSpeechSynthesizer() {
    stop();
}

bool QtSpeechSynthesizer::speak(const Utterance& utterance) {
    // The toolkit's own stand-in speaks to nobody.
    const QStringList engines = QTextToSpeech::availableEngines();
    if (std::ranges::all_of(engines, [](const QString& name) { return name == "mock"; })) return false;
    if (!engine_) engine_ = std::make_unique<QTextToSpeech>();
    if (engine_->state() == QTextToSpeech::BackendError) {
        engine_.reset();  // the service may be there the next time
        return false;
    }
    if (utterance.language) chooseVoice(*engine_, *utterance.language);
    engine_->setRate(toolkitRate(utterance.rate));
    engine_->say(QString::fromStdString(utterance.text));
    return true;
}

void QtSpeechSynthesizer::stop() {
    if (engine_) engine_->stop();
}

}  // namespace ovrin
