// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_options.h"

#include <cstring>
#include <sane/saneopts.h>

namespace folidex {

namespace {

constexpr double kFixedScale = 65536.0;
constexpr double kMillimetresAnInch = 25.4;

bool has(const QByteArray& source, const char* word) {
    return source.toLower().contains(word);
}

bool is_feeder(const QByteArray& source) {
    // Film and slide feeders do not take paper.
    const bool film = has(source, "slide") || has(source, "film") || has(source, "transparen");
    return !film && (has(source, "adf") || has(source, "feeder") || has(source, "duplex"));
}

bool reads_both_sides(const QByteArray& source) {
    return has(source, "duplex") || has(source, "both");
}

} // namespace

std::optional<SaneOptions::Found> SaneOptions::find(const char* name) const {
    const SANE_Option_Descriptor* count = api_.get_option_descriptor(handle_, 0);
    SANE_Int options = 0;
    if (!count || api_.control_option(handle_, 0, SANE_ACTION_GET_VALUE, &options, nullptr) !=
                      SANE_STATUS_GOOD)
        return std::nullopt;
    for (SANE_Int index = 1; index < options; ++index) {
        const SANE_Option_Descriptor* option = api_.get_option_descriptor(handle_, index);
        if (option && option->name && std::strcmp(option->name, name) == 0 &&
            SANE_OPTION_IS_ACTIVE(option->cap))
            return Found{index, option};
    }
    return std::nullopt;
}

std::optional<QByteArray> SaneOptions::value(const Found& option) const {
    if (option.descriptor->size <= 0 || (option.descriptor->cap & SANE_CAP_SOFT_DETECT) == 0)
        return std::nullopt;
    QByteArray bytes(option.descriptor->size, '\0');
    const SANE_Status status =
        api_.control_option(handle_, option.index, SANE_ACTION_GET_VALUE, bytes.data(), nullptr);
    return status == SANE_STATUS_GOOD ? std::optional(bytes) : std::nullopt;
}

QList<QByteArray> SaneOptions::choices(const char* name) const {
    QList<QByteArray> texts;
    const auto option = find(name);
    if (!option || option->descriptor->type != SANE_TYPE_STRING ||
        option->descriptor->constraint_type != SANE_CONSTRAINT_STRING_LIST ||
        !SANE_OPTION_IS_SETTABLE(option->descriptor->cap))
        return texts;
    for (const auto* text = option->descriptor->constraint.string_list; text && *text; ++text)
        texts.append(*text);
    return texts;
}

std::optional<double> SaneOptions::number(const char* name, SANE_Unit unit) const {
    const auto option = find(name);
    if (!option || option->descriptor->unit != unit)
        return std::nullopt;
    const auto bytes = value(*option);
    SANE_Word word = 0;
    if (!bytes || bytes->size() < static_cast<qsizetype>(sizeof word))
        return std::nullopt;
    std::memcpy(&word, bytes->constData(), sizeof word);
    if (option->descriptor->type == SANE_TYPE_FIXED)
        return word / kFixedScale;
    return option->descriptor->type == SANE_TYPE_INT ? std::optional<double>(word) : std::nullopt;
}

SANE_Status SaneOptions::set_text(const char* name, const QByteArray& value) const {
    const auto option = find(name);
    if (!option)
        return SANE_STATUS_UNSUPPORTED;
    // Drivers read as many bytes as the option is long, whatever the text.
    QByteArray bytes = value;
    bytes.append('\0');
    bytes.resize(qMax(bytes.size(), static_cast<qsizetype>(option->descriptor->size)), '\0');
    SANE_Int info = 0;
    return api_.control_option(handle_, option->index, SANE_ACTION_SET_VALUE, bytes.data(), &info);
}

SANE_Status SaneOptions::switch_on(const char* name) const {
    const auto option = find(name);
    if (!option || option->descriptor->type != SANE_TYPE_BOOL ||
        !SANE_OPTION_IS_SETTABLE(option->descriptor->cap))
        return SANE_STATUS_UNSUPPORTED;
    SANE_Bool on = SANE_TRUE;
    SANE_Int info = 0;
    return api_.control_option(handle_, option->index, SANE_ACTION_SET_VALUE, &on, &info);
}

QByteArray feeder_source(const QList<QByteArray>& sources, bool both_sides) {
    QByteArray one_sided;
    for (const QByteArray& source : sources) {
        if (!is_feeder(source))
            continue;
        if (reads_both_sides(source)) {
            if (both_sides)
                return source;
        } else if (one_sided.isEmpty() && !has(source, "back")) {
            one_sided = source;
        }
    }
    return one_sided;
}

QByteArray glass_source(const QList<QByteArray>& sources) {
    for (const QByteArray& source : sources)
        if (has(source, "flatbed") || has(source, "glass") || has(source, "platen") ||
            has(source, "normal"))
            return source;
    return {};
}

SaneScale sane_scale(const SaneOptions& options) {
    const auto dpi = [&](const char* name) {
        return qMax(0.0, options.number(name, SANE_UNIT_DPI).value_or(0));
    };
    const double both = dpi(SANE_NAME_SCAN_RESOLUTION);
    const double x = dpi(SANE_NAME_SCAN_X_RESOLUTION);
    const double y = dpi(SANE_NAME_SCAN_Y_RESOLUTION);
    SaneScale scale;
    scale.told.x = x > 0 ? x : both;
    scale.told.y = y > 0 ? y : (both > 0 ? both : scale.told.x);
    const auto left = options.number(SANE_NAME_SCAN_TL_X, SANE_UNIT_MM);
    const auto right = options.number(SANE_NAME_SCAN_BR_X, SANE_UNIT_MM);
    if (left && right)
        scale.width = qMax(0.0, *right - *left);
    return scale;
}

SaneResolution SaneScale::resolution(int pixels_per_line) const {
    if (told.x > 0)
        return told;
    if (width <= 0 || pixels_per_line <= 0)
        return {kAssumedResolution, kAssumedResolution};
    const double measured = pixels_per_line / (width / kMillimetresAnInch);
    return {measured, measured};
}

} // namespace folidex
