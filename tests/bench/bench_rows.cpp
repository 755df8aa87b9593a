// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// Filling the results grid with a hundred thousand documents and painting it, against the
// toolkit's table of items with the same texts in the same run. Times are processor time; memory
// is what the C library has given out. Ends with the ratios, the goals and an exit code of 1 when
// one is missed. FOLIDEX_BENCH_DOCUMENTS sets another size.

#include "browser/results_model.h"
#include "common/day_number.h"
#include "controls/grid.h"
#include "tests/bench/comparison.h"
#include "tests/bench/sample_data.h"

#include <QApplication>
#include <QHeaderView>
#include <QTableWidget>
#include <QTextStream>
#include <malloc.h>
#include <memory>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRepetitions = 7;
constexpr double kMostOfItems = 0.15;
constexpr double kMostBytesARow = 140;
const QString kDateFormat = u"M/d/yyyy"_s;

struct Document {
    double date;
    QString description;
    QString file_name;
    QString location;
    QString link;
};

std::vector<Document> make_documents(int count) {
    std::vector<Document> documents;
    documents.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k)
        documents.push_back({static_cast<double>(bench::kFirstDay + k % bench::kDays),
                             u"Invoice %1 of the year's deliveries"_s.arg(k),
                             u"101209120000_%1.pdf"_s.arg(k), u"1009"_s, QString::number(k)});
    return documents;
}

void prepare(QTableView& view) {
    for (int column : {ResultsModel::kFileName, ResultsModel::kLocation, ResultsModel::kLink})
        view.setColumnHidden(column, true);
    view.horizontalHeader()->setStretchLastSection(true);
    view.resize(683, 527);
}

void paint(QTableView& view) {
    view.show();
    QCoreApplication::processEvents();
    view.viewport()->repaint();
}

class Ours {
public:
    explicit Ours(const std::vector<Document>& documents) : model_(kDateFormat) {
        grid_.set_layout(ResultsModel::kColumns, 1);
        grid_.setModel(&model_);
        prepare(grid_);
        ResultRows rows;
        for (const Document& document : documents)
            rows.add(document.date, document.description, document.file_name, document.location,
                     document.link);
        model_.set_rows(std::move(rows));
        paint(grid_);
    }

private:
    ResultsModel model_;
    Grid grid_;
};

class Items {
public:
    explicit Items(const std::vector<Document>& documents)
        : table_(static_cast<int>(documents.size()), ResultsModel::kColumns) {
        prepare(table_);
        for (int row = 0; row < table_.rowCount(); ++row) {
            const Document& document = documents[static_cast<std::size_t>(row)];
            const QString texts[] = {short_date(document.date, kDateFormat), document.description,
                                     document.file_name, document.location, document.link};
            for (int column = 0; column < ResultsModel::kColumns; ++column)
                table_.setItem(row, column, new QTableWidgetItem(texts[column]));
        }
        paint(table_);
    }

private:
    QTableWidget table_;
};

std::size_t bytes_given_out() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

template <class Shown> double bytes_a_row(const std::vector<Document>& documents) {
    const std::size_t before = bytes_given_out();
    const Shown shown(documents);
    return static_cast<double>(bytes_given_out() - before) / static_cast<double>(documents.size());
}

template <class Shown> double fill_seconds(const std::vector<Document>& documents) {
    std::unique_ptr<Shown> shown;
    // Without the time that it takes to put all of it away again.
    return bench::processor_seconds([&] { shown = std::make_unique<Shown>(documents); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    bench::Comparison comparison(argc, argv);
    const std::vector<Document> documents = make_documents(bench::sample_size());
    // What the toolkit makes once for all windows is not the rows'.
    const std::vector<Document> one(documents.begin(), documents.begin() + 1);
    bytes_a_row<Ours>(one);
    bytes_a_row<Items>(one);

    comparison.add("grid", kRepetitions, [&] { return fill_seconds<Ours>(documents); });
    comparison.add("items", kRepetitions, [&] { return fill_seconds<Items>(documents); });
    comparison.run();
    const double ours = comparison.median("grid");
    const double items = comparison.median("items");
    const double bytes = bytes_a_row<Ours>(documents);
    QTextStream(stdout) << documents.size() << " documents: " << ours * 1000 << " ms, " << bytes
                        << " bytes a row; a table of items " << items * 1000 << " ms, "
                        << bytes_a_row<Items>(documents) << " bytes a row" << Qt::endl;
    bool good = bench::report(u"time by the items'"_s, items == 0 ? 0 : ours / items, kMostOfItems);
    good = bench::report(u"bytes a row"_s, bytes, kMostBytesARow) && good;
    return good ? 0 : 1;
}
