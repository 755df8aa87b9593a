// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"

#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/paths.h"
#include "platform/safe_file.h"
#include "platform/shell.h"

#include <QFile>

namespace folidex {

namespace {

constexpr int kFolderNotDetected = 513;
constexpr int kIndent = 2;

bool fits_into_xml(QChar c) {
    if (c < u' ')
        return c == u'\t' || c == u'\n' || c == u'\r';
    return c.unicode() < 0xfffe;
}

// One character that XML cannot hold, pasted into a name, would make the whole file unreadable
// at the next start.
QString storable(QString text) {
    for (QChar& c : text)
        if (!fits_into_xml(c))
            c = QChar::ReplacementCharacter;
    return text;
}

QDomElement new_child(QDomElement parent, const QString& tag) {
    QDomElement child = parent.ownerDocument().createElement(tag);
    parent.appendChild(child);
    return child;
}

} // namespace

QString PreferencesElement::tag() const {
    return element_.tagName();
}

QString PreferencesElement::text() const {
    // Own text only: an element that holds children may have words of its own before them.
    QString all;
    for (QDomNode node = element_.firstChild(); !node.isNull(); node = node.nextSibling())
        if (node.isText() || node.isCDATASection())
            all += node.nodeValue();
    return all;
}

void PreferencesElement::set_text(const QString& text) {
    for (QDomNode node = element_.firstChild(); !node.isNull();) {
        const QDomNode next = node.nextSibling();
        if (node.isText() || node.isCDATASection())
            element_.removeChild(node);
        node = next;
    }
    if (!text.isEmpty())
        element_.insertBefore(element_.ownerDocument().createTextNode(storable(text)), QDomNode());
}

PreferencesElement PreferencesElement::child(const QString& tag) const {
    return PreferencesElement{element_.firstChildElement(tag)};
}

PreferencesElement PreferencesElement::child_or_new(const QString& tag) {
    const QDomElement found = element_.firstChildElement(tag);
    return PreferencesElement{found.isNull() ? new_child(element_, tag) : found};
}

PreferencesElement PreferencesElement::append_child(const QString& tag) {
    return PreferencesElement{new_child(element_, tag)};
}

QList<PreferencesElement> PreferencesElement::children() const {
    QList<PreferencesElement> all;
    for (QDomElement child = element_.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        all.append(PreferencesElement{child});
    return all;
}

QString PreferencesElement::child_text(const QString& tag) const {
    return child(tag).text();
}

void PreferencesElement::set_child_text(const QString& tag, const QString& text) {
    child_or_new(tag).set_text(text);
}

QString PreferencesElement::attribute(const QString& name) const {
    return element_.attribute(name);
}

void PreferencesElement::set_attribute(const QString& name, const QString& value) {
    element_.setAttribute(name, storable(value));
}

bool PreferencesDocument::load(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QDomDocument loaded;
    if (!loaded.setContent(&file) || loaded.documentElement().isNull())
        return false;
    document_ = loaded;
    move_to_root();
    return true;
}

void PreferencesDocument::save(const QString& path) const {
    write_file(path, document_.toByteArray(kIndent));
}

void PreferencesDocument::set_root_tag(const QString& tag) {
    QDomElement root = document_.documentElement();
    if (root.isNull()) {
        document_.appendChild(document_.createProcessingInstruction(
            QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
        document_.appendChild(document_.createElement(tag));
    } else {
        root.setTagName(tag);
    }
    move_to_root();
}

void PreferencesDocument::move_to_root() {
    cursor_ = document_.documentElement();
}

PreferencesElement PreferencesDocument::cursor() const {
    return PreferencesElement{cursor_};
}

PreferencesElement PreferencesDocument::child(const QString& tag) const {
    return cursor().child(tag);
}

QString PreferencesDocument::child_text(const QString& tag) const {
    return cursor().child_text(tag);
}

void PreferencesDocument::set_child_text(const QString& tag, const QString& text) {
    cursor().set_child_text(tag, text);
}

QString PreferencesDocument::xml() const {
    return document_.toString(kIndent);
}

QString preferences_path() {
    return join_path(AppDataFolder, QStringLiteral("folidex_Preferences.xml"));
}

void save_localXML() {
    trapped("Utilities", "save_localXML", [] {
        Preferences().move_to_root();
        Preferences().save(preferences_path());
    });
}

QString SpecialFolder(int folderId) {
    return trapped("Utilities", "SpecialFolder", [&] {
        const QString path = shell_folder(folderId);
        if (path.isEmpty())
            throw Error{kFolderNotDetected, QStringLiteral("The folder path could not be detected"),
                        QStringLiteral("SpecialFolder")};
        return path;
    });
}

} // namespace folidex
