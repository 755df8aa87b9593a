// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/test_station.h"

#include "app/process_values.h"
#include "common/day_number.h"
#include "common/error.h"
#include "common/paths.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/sql_dialect.h"

#include <QDir>
#include <QFile>

namespace folidex::test {

namespace {

void make_folder(const QString& path) {
    if (!QDir().mkpath(path))
        throw Error{kPathNotFound, QStringLiteral("cannot make the folder ") + path};
}

// A copy of the template keeps its protection; a station's own file can be written.
void copy_template(const QString& target) {
    if (!QFile::copy(template_database(), target))
        throw Error{kFileNotFound,
                    QStringLiteral("cannot copy the template ") + template_database()};
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                      QFile::ReadOther);
}

} // namespace

TestStation::TestStation() {
    if (!root_.isValid())
        throw Error{kPathNotFound, root_.errorString()};
    make_folder(app_data());
    make_folder(join_path(data_folder(), QStringLiteral("scanned_files")));
    copy_template(database_path());
    ProductTitle = QStringLiteral("Folidex");
    AppDataFolder = app_data();
    DataFolder = data_folder();
    DbOpenError.clear();
    sel_link = -1;
    Preferences() = PreferencesDocument();
    Preferences().set_root_tag(QStringLiteral("folidex"));
    Preferences().set_child_text(QStringLiteral("dblocation"), data_folder());
    set_database(Database::open(database_path()));
}

TestStation::~TestStation() {
    set_database(nullptr);
    Preferences() = PreferencesDocument();
    AppDataFolder.clear();
    DataFolder.clear();
    DbOpenError.clear();
    sel_link = -1;
}

QString TestStation::root() const {
    return QDir::toNativeSeparators(root_.path());
}

QString TestStation::app_data() const {
    return join_path(root(), QStringLiteral("app_data"));
}

QString TestStation::data_folder() const {
    return join_path(root(), QStringLiteral("data"));
}

QString TestStation::database_path() const {
    return join_path(data_folder(), QStringLiteral("db.mdb"));
}

int TestStation::add_tag(const QString& description) {
    const int link = getNewLink(QString());
    database().execute(QStringLiteral("INSERT into Tags ([Link], [Description]) VALUES (") +
                       QString::number(link) + QStringLiteral(", '") + quoted(description) +
                       QStringLiteral("')"));
    return link;
}

int TestStation::add_document(const QString& description, double date, const QList<int>& tags,
                              const QString& location, const QString& file_name) {
    const int link = getNewLink(QString());
    const QString file = file_name.isEmpty() ? QStringLiteral("%1.pdf").arg(link) : file_name;
    database().execute(
        QStringLiteral(
            "INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES (") +
        QString::number(link) + QStringLiteral(", '") + quoted(description) +
        QStringLiteral("', ") + day_number_text(date) + QStringLiteral(", '") + quoted(file) +
        QStringLiteral("', '") + quoted(location) + QStringLiteral("')"));
    for (const int tag : tags)
        database().execute(QStringLiteral("INSERT INTO tagged (scan, tag) VALUES (") +
                           QString::number(link) + QStringLiteral(", ") + QString::number(tag) +
                           QStringLiteral(")"));
    return link;
}

QString TestStation::value(const QString& sql) const {
    const Recordset found = database().open_recordset(sql);
    return found.eof() ? QString() : found.text_at(0);
}

QStringList TestStation::rows(const QString& sql) const {
    Recordset found = database().open_recordset(sql);
    QStringList all;
    const int fields = found.field_count();
    for (; !found.eof(); found.move_next()) {
        QStringList texts;
        for (int field = 0; field < fields; ++field)
            texts.append(found.text_at(field));
        all.append(texts.join(u'|'));
    }
    return all;
}

QString template_database() {
    return QStringLiteral(FOLIDEX_TEMPLATE);
}

} // namespace folidex::test
