// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <optional>

namespace folidex {

/// What filing decides and writes without a window. The names are a rule that every station
/// and every later year relies on to find a document's file.

/// Seam for tests: the moment by the station's clock, without a zone.
extern std::function<QDateTime()> wall_clock;

/// The month folder of a document: month and year of the document's date, October 2009 is 1009.
QString filing_location(const QDate& document_date);
/// The file's name: the moment of saving (mmddyyhhnnss), "_", the link number, ".pdf".
QString filing_name(const QDateTime& moment, int link);

/// The day number in a stored date field; nothing for Null and for words.
std::optional<double> stored_date(const QVariant& field);

/// A row of scans.
struct FiledDocument {
    int link = 0;
    QString description;
    double date = 0; ///< day number
    QString file_name;
    QString location;
};

QString insert_document_statement(const FiledDocument& document);
/// Description and date only: a document keeps its file's folder and name for ever.
QString update_document_statement(int link, const QString& description, double date);
/// The tag is a grid text, of which the leading number counts.
QString insert_tagged_statement(int link, const QString& tag);

/// Deletes the tagged rows of a document whose tag is none of the assigned ones.
void remove_unassigned_tags(int link, const QStringList& assigned);
/// Adds a tagged row for every assigned tag that the document does not have yet.
void add_missing_tags(int link, const QStringList& assigned);

} // namespace folidex
