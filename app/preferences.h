// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDomDocument>
#include <QList>
#include <QString>

namespace folidex {

/// One element of the preferences document; null when there is none. Reading through a null
/// element yields nothing or empty text.
class PreferencesElement {
public:
    PreferencesElement() = default;
    explicit PreferencesElement(QDomElement element) : element_(std::move(element)) {}

    bool is_null() const { return element_.isNull(); }
    QString tag() const;
    QString text() const;
    void set_text(const QString& text);

    /// The first child with a tag; null when absent.
    PreferencesElement child(const QString& tag) const;
    /// The same, created at the end of the children when absent.
    PreferencesElement child_or_new(const QString& tag);
    PreferencesElement append_child(const QString& tag);
    QList<PreferencesElement> children() const;
    QString child_text(const QString& tag) const;
    void set_child_text(const QString& tag, const QString& text);
    QString attribute(const QString& name) const;
    void set_attribute(const QString& name, const QString& value);

private:
    QDomElement element_;
};

/// The preferences file in memory, with a cursor. Loading replaces the document only when the
/// file is good; saving writes beside the file and renames.
class PreferencesDocument {
public:
    /// Loads the whole document; false when the file cannot be read or is not XML.
    bool load(const QString& path);
    void save(const QString& path) const;
    void set_root_tag(const QString& tag);
    void move_to_root();
    /// The element the cursor is on.
    PreferencesElement cursor() const;
    PreferencesElement child(const QString& tag) const;
    QString child_text(const QString& tag) const;
    void set_child_text(const QString& tag, const QString& text);
    /// The document's text.
    QString xml() const;

private:
    QDomDocument document_;
    QDomElement cursor_;
};

/// The preferences file's full path.
QString preferences_path();
/// Writes the whole preferences document to its file.
void save_localXML();
/// The full path of a shell folder; throws Error 513 when it cannot be detected.
QString SpecialFolder(int folderId);

} // namespace folidex
