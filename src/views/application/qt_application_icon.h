// The pictures of the program's icon, as all of its windows carry one.
#pragma once

#include <QIcon>
#include <QString>
#include <string_view>

#include "platform/application_icon.h"

namespace ovrin {

// After the QApplication.
class QtApplicationIcon final : public ApplicationIcon {
public:
    bool hasImage(std::string_view asset) const override;
    void setImage(std::string_view asset) override;

    // The resource that holds the picture; empty for a name that the program has no picture of.
    static QString file(std::string_view asset);
    // Null for such a name.
    static QIcon icon(std::string_view asset);
};

}  // namespace ovrin
