#include "platform/linux/qt/dbus_menu_layout.h"

#include <QDBusMetaType>
#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "platform/shortcut_description.h"

namespace ovrin {

namespace {

using KeyboardShortcuts::Modifiers;

constexpr std::array<std::pair<Modifiers, const char*>, 4> modifierWords{{{Modifiers::control, "Control"},
                                                                          {Modifiers::option, "Alt"},
                                                                          {Modifiers::shift, "Shift"},
                                                                          {Modifiers::command, "Super"}}};

// The protocol's words for the keys of the item; none where it has none.
QStringList keyWords(const MenuItem& item) {
    const Modifiers modifiers = item.shortcut ? item.shortcut->modifiers() : Modifiers::control;
    const std::string written = KeyboardShortcuts::description(modifiers, "");
    if (!item.keyEquivalent.starts_with(written) || contains(modifiers, Modifiers::function)) return {};
    QStringList words;
    for (const auto& [modifier, word] : modifierWords) {
        if (contains(modifiers, modifier)) words.append(QLatin1String(word));
    }
    words.append(QString::fromStdString(item.keyEquivalent.substr(written.size())));
    return words;
}

QVariantMap propertiesOf(const MenuItem& item, const std::function<QByteArray(OVIcon)>& png) {
    if (item.isSeparator()) return {{"type", "separator"}};
    QVariantMap properties;
    // An underscore would mark a letter.
    properties["label"] = QString::fromStdString(item.title).simplified().replace('_', QStringLiteral("__"));
    if (!item.isEnabled) properties["enabled"] = false;
    if (item.icon) properties["icon-data"] = png(*item.icon);
    if (!item.submenu.empty()) properties["children-display"] = "submenu";
    if (const QStringList keys = keyWords(item); !item.keyEquivalent.empty() && !keys.isEmpty()) {
        properties["shortcut"] = QVariant::fromValue(QList<QStringList>{keys});
    }
    return properties;
}

QList<DBusMenuLine> linesOf(const Menu& menu, const std::function<QByteArray(OVIcon)>& png, int& lastId,
                            std::map<int, std::function<void()>>& actions) {
    QList<DBusMenuLine> lines;
    for (const MenuItem& item : menu) {
        DBusMenuLine line{.id = ++lastId, .properties = propertiesOf(item, png)};
        if (item.isEnabled && item.action) actions[line.id] = item.action;
        line.children = linesOf(item.submenu, png, lastId, actions);
        lines.append(std::move(line));
    }
    return lines;
}

}  // namespace

DBusMenuLine DBusMenuLine::excerpt(int depth, const QStringList& names) const {
    DBusMenuLine result{.id = id};
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (names.isEmpty() || names.contains(property.key())) result.properties.insert(property.key(), *property);
    }
    if (depth == 0) return result;
    for (const DBusMenuLine& child : children) result.children.append(child.excerpt(std::max(depth - 1, -1), names));
    return result;
}

const DBusMenuLine* DBusMenuLine::find(int wanted) const {
    if (id == wanted) return this;
    for (const DBusMenuLine& child : children) {
        if (const DBusMenuLine* const found = child.find(wanted)) return found;
    }
    return nullptr;
}

bool DBusMenuLine::looksLike(const DBusMenuLine& other) const {
    return properties == other.properties &&
           std::equal(children.begin(), children.end(), other.children.begin(), other.children.end(),
                      [](const DBusMenuLine& one, const DBusMenuLine& another) { return one.looksLike(another); });
}

void registerDBusMenuTypes() {
    qDBusRegisterMetaType<QList<QStringList>>();
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<DBusMenuLine>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

DBusMenuLayout DBusMenuLayout::of(const Menu& menu, const std::function<QByteArray(OVIcon)>& png, int& lastId) {
    DBusMenuLayout layout;
    layout.root = {.id = rootId, .properties = {{"children-display", "submenu"}}};
    layout.root.children = linesOf(menu, png, lastId, layout.actions);
    return layout;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLine& line) {
    argument.beginStructure();
    argument << line.id << line.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLine& child : line.children) argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLine& line) {
    argument.beginStructure();
    argument >> line.id >> line.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        line.children.append(qdbus_cast<DBusMenuLine>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& properties) {
    argument.beginStructure();
    argument << properties.id << properties.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& properties) {
    argument.beginStructure();
    argument >> properties.id >> properties.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

}  // namespace ovrin
