// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/statement.h"

#include "common/error.h"
#include "data/database.h"

#include <sqlite3.h>

namespace folidex {

namespace {

constexpr int kTextBehindStatement = 3142;

bool is_only_blank(const char* tail) {
    return QString::fromUtf8(tail).trimmed().remove(u';').trimmed().isEmpty();
}

} // namespace

Statement::Statement(const Database& database, const QString& sql) : database_(database) {
    const QByteArray text = sql.toUtf8();
    const char* tail = nullptr;
    const int code = sqlite3_prepare_v2(database.handle(), text.constData(), -1, &handle_, &tail);
    if (code != SQLITE_OK)
        database.fail(code);
    if (handle_ == nullptr)
        throw Error{SQLITE_ERROR, QStringLiteral("empty statement: ") + database.path()};
    if (!is_only_blank(tail)) {
        sqlite3_finalize(handle_);
        throw Error{kTextBehindStatement,
                    QStringLiteral("characters found after end of statement: ") + database.path()};
    }
}

Statement::~Statement() {
    sqlite3_finalize(handle_);
}

void Statement::bind(int parameter, const QVariant& value) {
    int code = SQLITE_OK;
    if (value.isNull()) {
        code = sqlite3_bind_null(handle_, parameter);
    } else if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float) {
        code = sqlite3_bind_double(handle_, parameter, value.toDouble());
    } else if (value.typeId() == QMetaType::QString) {
        const QByteArray text = value.toString().toUtf8();
        code = sqlite3_bind_text64(handle_, parameter, text.constData(),
                                   static_cast<sqlite3_uint64>(text.size()), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    } else {
        code = sqlite3_bind_int64(handle_, parameter, value.toLongLong());
    }
    if (code != SQLITE_OK)
        database_.fail(code);
}

void Statement::bind(int parameter, qint64 value) {
    const int code = sqlite3_bind_int64(handle_, parameter, value);
    if (code != SQLITE_OK)
        database_.fail(code);
}

bool Statement::step() {
    const int code = sqlite3_step(handle_);
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE)
        database_.fail(code);
    return false;
}

void Statement::run() {
    while (step()) {
    }
}

void Statement::reset() {
    sqlite3_reset(handle_);
}

int Statement::column_count() const {
    return sqlite3_column_count(handle_);
}

QString Statement::column_name(int column) const {
    return QString::fromUtf8(sqlite3_column_name(handle_, column));
}

qint64 Statement::integer(int column) const {
    return sqlite3_column_int64(handle_, column);
}

} // namespace folidex
