#include "windows/history_filter.h"

namespace ovrin {

namespace {

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

}  // namespace

HistoryKind historyKind(std::string_view recordType) {
    if (contains(recordType, "ai")) return HistoryKind::ai;
    if (contains(recordType, "ocr")) return HistoryKind::ocr;
    if (contains(recordType, "replace")) return HistoryKind::replace;
    return HistoryKind::translation;
}

std::string_view label(HistoryKind kind) {
    switch (kind) {
        case HistoryKind::ai:
            return "AI";
        case HistoryKind::ocr:
            return "OCR";
        case HistoryKind::replace:
            return "替换";
        case HistoryKind::translation:
            return "翻译";
    }
    return {};
}

OVIcon icon(HistoryKind kind) {
    switch (kind) {
        case HistoryKind::ai:
            return OVIcon::messageQuestion;
        case HistoryKind::ocr:
            return OVIcon::scanText;
        case HistoryKind::replace:
        case HistoryKind::translation:
            return OVIcon::languages;
    }
    return OVIcon::languages;
}

std::string_view label(HistoryFilter filter) {
    switch (filter) {
        case HistoryFilter::all:
            return "全部";
        case HistoryFilter::ocr:
            return "OCR";
        case HistoryFilter::translation:
            return "翻译";
        case HistoryFilter::ai:
            return "AI";
        case HistoryFilter::replace:
            return "替换";
    }
    return {};
}

bool passes(std::string_view recordType, HistoryFilter filter) {
    switch (filter) {
        case HistoryFilter::all:
            return true;
        case HistoryFilter::ocr:
            return contains(recordType, "ocr");
        case HistoryFilter::translation:
            return contains(recordType, "translation");
        case HistoryFilter::ai:
            return contains(recordType, "ai");
        case HistoryFilter::replace:
            return contains(recordType, "replace");
    }
    return true;
}

}  // namespace ovrin
