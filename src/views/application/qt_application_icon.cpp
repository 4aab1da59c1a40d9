#include "views/application/qt_application_icon.h"

#include <QApplication>
#include <QFile>

namespace ovrin {

QString QtApplicationIcon::file(std::string_view asset) {
    if (asset == "EntranceIconLight") return QStringLiteral(":/assets/entrance-icon-light.svg");
    if (asset == "EntranceIconDark") return QStringLiteral(":/assets/entrance-icon-dark.svg");
    if (asset == "AboutMascot") return QStringLiteral(":/assets/about-mascot.svg");
    return {};
}

bool QtApplicationIcon::hasImage(std::string_view asset) const {
    return QFile::exists(file(asset));
}

void QtApplicationIcon::setImage(std::string_view asset) {
    QApplication::setWindowIcon(icon(asset));
}

QIcon QtApplicationIcon::icon(std::string_view asset) {
    const QString name = file(asset);
    return name.isEmpty() ? QIcon() : QIcon(name);
}

}  // namespace ovrin
