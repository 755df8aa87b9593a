// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/scripted_scanner.h"

#include "platform/safe_file.h"

#include <QWidget>

using namespace Qt::StringLiterals;

namespace folidex::test {

namespace {

QString call_of(const char* name, bool on) {
    return QString::fromLatin1(name) + (on ? u" on"_s : u" off"_s);
}

} // namespace

int ScriptedScanner::source_count() {
    return static_cast<int>(script_->sources.size());
}

QString ScriptedScanner::source_name(int k) {
    return script_->sources.at(k);
}

void ScriptedScanner::on_sources_changed(std::function<void()> handler) {
    script_->sources_changed = std::move(handler);
}

void ScriptedScanner::set_current_source(int index) {
    note(u"source "_s + QString::number(index));
}

bool ScriptedScanner::open_source() {
    note(u"open"_s);
    return script_->opens;
}

void ScriptedScanner::set_use_feeder(bool on) {
    note(call_of("feeder", on));
}

void ScriptedScanner::set_auto_feed(bool on) {
    note(call_of("auto feed", on));
}

void ScriptedScanner::set_show_progress(bool on) {
    note(call_of("progress", on));
}

bool ScriptedScanner::supports_duplex() {
    note(u"duplex?"_s);
    return script_->duplex;
}

void ScriptedScanner::set_duplex(bool on) {
    note(call_of("duplex", on));
}

void ScriptedScanner::set_scan_until_empty(bool on) {
    note(call_of("until empty", on));
}

void ScriptedScanner::discard_pages() {
    note(u"discard"_s);
    appended_.clear();
}

void ScriptedScanner::acquire(QWidget* parent) {
    note(u"acquire over "_s + parent->objectName());
    pages_ = 0;
    ++script_->acquisitions;
    if (script_->acquiring)
        script_->acquiring();
    if (script_->jam)
        throw *script_->jam;
    pages_ = script_->pages;
}

int ScriptedScanner::page_count() {
    return pages_;
}

void ScriptedScanner::select_page(int page) {
    note(u"select "_s + QString::number(page));
}

void ScriptedScanner::append_page(int page) {
    note(u"append "_s + QString::number(page));
    appended_.append(QString::number(page));
}

void ScriptedScanner::write_pdf(const QString& path) {
    note(u"write "_s + path);
    if (script_->full_disk)
        throw *script_->full_disk;
    write_file(
        path, u"scan %1: pages %2"_s.arg(script_->acquisitions).arg(appended_.join(u' ')).toUtf8());
}

} // namespace folidex::test
