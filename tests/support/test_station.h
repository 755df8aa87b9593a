// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QTemporaryDir>

namespace folidex::test {

/// A workstation of its own for one test: an application folder, a data folder with an empty
/// database from the template and scanned_files, the process-wide values set to them and the
/// database open. The destructor closes the database and removes everything.
class TestStation {
public:
    TestStation();
    ~TestStation();

    QString root() const; ///< the temporary folder that holds all of it
    QString app_data() const;
    QString data_folder() const;
    QString database_path() const;

    /// Adds a tag and returns its link; adds a document with tags and returns its link.
    int add_tag(const QString& description);
    int add_document(const QString& description, double date, const QList<int>& tags,
                     const QString& location = QStringLiteral("1009"),
                     const QString& file_name = {});
    /// First column of the first row of a statement, as text; for looking into the database.
    QString value(const QString& sql) const;
    /// All rows of a statement, fields joined by "|".
    QStringList rows(const QString& sql) const;

private:
    QTemporaryDir root_;
};

/// The template database that the build made (the program's folder holds a copy of it).
QString template_database();

} // namespace folidex::test
