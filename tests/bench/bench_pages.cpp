// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// Pages to PDF, against img2pdf in the same run: ten A4 pages of text at 300 dots an inch with
// the noise of a scanner. Times are processor time, so that a busy machine does not decide. Ends
// with the ratios, the goals and an exit code of 1 when one is missed.

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/page_spool.h"
#include "capture/scanner/pdf_writer.h"
#include "tests/bench/comparison.h"

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <numbers>

using namespace folidex;

namespace {

constexpr int kWidth = 2480;
constexpr int kHeight = 3508;
constexpr int kDpi = 300;
constexpr int kPages = 10;
constexpr int kRepetitions = 7;
constexpr double kNoise = 2.6;

struct Kind {
    const char* name;
    PixelType type;
    double most_time; ///< goals: ours by img2pdf's
    double most_size;
};
constexpr Kind kKinds[] = {
    {"1-bit", PixelType::kBilevel, 0.5, 0.97},
    {"grey", PixelType::kGray, 1.3, 0.9},
    {"colour", PixelType::kRgb, 1.0, 0.9},
};
constexpr double kMostMemory = 1.1;
constexpr const char* kOurs = "ours";
constexpr const char* kPeer = "img2pdf";

QString work_folder;
QProcess* peer = nullptr;

QString picture_path(const Kind& kind, int page) {
    return QStringLiteral("%1/%2-%3.pnm").arg(work_folder, QLatin1String(kind.name)).arg(page);
}

QString words(QRandomGenerator& random, int count) {
    const QStringList syllables = QStringLiteral("ba do ri men tal us qua ver si on pre fi la ge "
                                                 "tor ne lum hy kra pos wi ex")
                                      .split(u' ');
    QString text;
    for (int i = 0; i < count; ++i) {
        for (int length = random.bounded(1, 5); length > 0; --length)
            text += syllables[random.bounded(syllables.size())];
        text += random.bounded(9) == 0 ? QStringLiteral(", ") : QStringLiteral(" ");
    }
    return text;
}

/// A letter: heading, paragraphs, now and then a picture or a table.
QImage draw_page(int page) {
    QRandomGenerator random(static_cast<quint32>(page) + 1);
    QImage image(kWidth, kHeight, QImage::Format_RGB888);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(76);
    painter.setFont(font);
    painter.setPen(QColor(30, 60, 130));
    painter.drawText(QRect(250, 240, 1980, 120), words(random, 4));
    font.setPixelSize(46);
    painter.setFont(font);
    painter.setPen(QColor(35, 32, 34));
    const int text_height = page % 3 == 0 ? 1600 : 2700;
    painter.drawText(QRect(250, 460, 1980, text_height), Qt::TextWordWrap, words(random, 190));
    if (page % 3 == 0) {
        QLinearGradient sky(0, 2100, 600, 3200);
        sky.setColorAt(0, QColor(190, 90, 60));
        sky.setColorAt(1, QColor(40, 110, 170));
        painter.fillRect(QRect(250, 2100, 1000, 1100), sky);
        for (int row = 0; row < 12; ++row)
            painter.drawRect(QRect(1400, 2100 + row * 90, 830, 90));
    }
    return image;
}

/// What a scanner would deliver of it, as a portable pixel map. Paper is white, as scanners set
/// their white point, so that half of its noise is cut off.
QByteArray scan(const QImage& page, PixelType type, quint32 seed) {
    QRandomGenerator random(seed);
    std::vector<int> noise(1 << 16);
    for (int& value : noise) {
        const double radius = std::sqrt(-2 * std::log(1 - random.generateDouble()));
        const double angle = 2 * std::numbers::pi * random.generateDouble();
        value = static_cast<int>(std::lround(kNoise * radius * std::cos(angle)));
    }
    const PageFormat format{type, kWidth, kHeight, kDpi, kDpi};
    const auto row_bytes = static_cast<qsizetype>(format.bytes_per_row());
    const int components = type == PixelType::kRgb ? 3 : 1;
    const QImage source = components == 3 ? page : page.convertToFormat(QImage::Format_Grayscale8);
    const char* magic = type == PixelType::kBilevel ? "P4" : components == 1 ? "P5" : "P6";
    QByteArray map = magic + QStringLiteral("\n%1 %2\n").arg(kWidth).arg(kHeight).toLatin1();
    if (type != PixelType::kBilevel)
        map += "255\n";
    QByteArray row(row_bytes, '\0');
    for (int y = 0; y < kHeight; ++y) {
        row.fill('\0');
        for (int i = 0; i < kWidth * components; ++i) {
            const int value =
                std::clamp(source.constScanLine(y)[i] + noise[random.generate() >> 16], 0, 255);
            if (type != PixelType::kBilevel)
                row[i] = static_cast<char>(value);
            else if (value < 128)
                row[i / 8] = static_cast<char>(row[i / 8] | 0x80 >> i % 8);
        }
        map += row;
    }
    return map;
}

void make_pictures() {
    for (int page = 0; page < kPages; ++page) {
        const QImage image = draw_page(page);
        for (const Kind& kind : kKinds) {
            QFile file(picture_path(kind, page));
            if (!file.open(QIODevice::WriteOnly))
                qFatal("no room for the pictures");
            file.write(scan(image, kind.type, static_cast<quint32>(page) + 100));
        }
    }
}

/// The program's road: rows in pieces as a scanner gives them, spool, PDF.
void make_pdf(const Kind& kind, int pages, const QString& pdf) {
    const PageFormat format{kind.type, kWidth, kHeight, kDpi, kDpi};
    const auto piece = static_cast<qint64>(format.bytes_per_row()) * 64;
    const qint64 picture_bytes = static_cast<qint64>(format.bytes_per_row()) * kHeight;
    PageSpool spool;
    for (int page = 0; page < pages; ++page) {
        QFile file(picture_path(kind, page % kPages));
        if (!file.open(QIODevice::ReadOnly) || !file.seek(file.size() - picture_bytes))
            qFatal("the pictures are gone");
        PageEncoder encoder(format);
        while (!file.atEnd())
            encoder.add_rows(file.read(piece));
        spool.add(encoder.finish());
    }
    QFile out(pdf);
    if (!out.open(QIODevice::WriteOnly))
        qFatal("cannot write the PDF");
    PdfWriter writer(out);
    for (int page = 1; page <= spool.count(); ++page)
        writer.add_page(spool.page(page));
    writer.finish();
}

double run_ours(const Kind& kind, const QString& pdf) {
    return bench::processor_seconds([&] { make_pdf(kind, kPages, pdf); });
}

double run_peer(const Kind& kind, const QString& pdf) {
    QStringList fields{QLatin1String(kind.name), pdf};
    for (int page = 0; page < kPages; ++page)
        fields.append(picture_path(kind, page));
    peer->write(fields.join(u'\t').toUtf8() + '\n');
    while (!peer->canReadLine())
        if (!peer->waitForReadyRead(60'000))
            qFatal("img2pdf: %s", peer->readAllStandardError().constData());
    bool is_number = false;
    const double seconds = peer->readLine().trimmed().toDouble(&is_number);
    if (!is_number)
        qFatal("img2pdf: %s", peer->readAllStandardError().constData());
    return seconds;
}

QString pdf_path(const Kind& kind, const char* who) {
    return QStringLiteral("%1/%2-%3.pdf")
        .arg(work_folder, QLatin1String(kind.name), QLatin1String(who));
}

std::string label(const Kind& kind, const char* who) {
    return std::string(kind.name) + '/' + who;
}

/// The peak of a child process that makes a PDF of so many pages, in KB.
double peak_memory(const Kind& kind, int pages) {
    QProcess child;
    child.start(
        QCoreApplication::applicationFilePath(),
        {QStringLiteral("--child"), QLatin1String(kind.name), QString::number(pages), work_folder});
    if (!child.waitForFinished(600'000) || child.exitCode() != 0)
        qFatal("the child failed: %s", child.readAllStandardError().constData());
    return child.readAllStandardOutput().trimmed().toDouble();
}

int be_child(const QStringList& arguments) {
    for (const Kind& kind : kKinds)
        if (arguments.value(2) == QLatin1String(kind.name))
            make_pdf(kind, arguments.value(3).toInt(), work_folder + QStringLiteral("/child.pdf"));
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            QTextStream(stdout) << line.mid(6).trimmed().split(' ').first() << '\n';
    return 0;
}

/// A page's share, 0 when nothing was made.
double page_seconds(const bench::Comparison& comparison, const Kind& kind, const char* who) {
    return comparison.median(label(kind, who)) / kPages;
}
double page_bytes(const Kind& kind, const char* who) {
    return static_cast<double>(QFileInfo(pdf_path(kind, who)).size()) / kPages;
}

bool report_all(const bench::Comparison& comparison) {
    bool met = true;
    QTextStream out(stdout);
    for (const Kind& kind : kKinds) {
        const QString name = QLatin1String(kind.name);
        const double time = page_seconds(comparison, kind, kOurs);
        const double their_time = page_seconds(comparison, kind, kPeer);
        const double size = page_bytes(kind, kOurs);
        const double their_size = page_bytes(kind, kPeer);
        out << QStringLiteral("%1 a page: %2 ms, %3 KB; img2pdf %4 ms, %5 KB\n")
                   .arg(name)
                   .arg(time * 1000, 0, 'f', 1)
                   .arg(size / 1000, 0, 'f', 1)
                   .arg(their_time * 1000, 0, 'f', 1)
                   .arg(their_size / 1000, 0, 'f', 1)
            << Qt::flush;
        met &= bench::report(name + QStringLiteral(": time by img2pdf's"),
                             their_time == 0 ? 0 : time / their_time, kind.most_time);
        met &= bench::report(name + QStringLiteral(": size by img2pdf's"),
                             their_size == 0 ? 0 : size / their_size, kind.most_size);
    }
    for (const Kind& kind : kKinds) {
        const double one = peak_memory(kind, 1);
        const double many = peak_memory(kind, 500);
        out << kind.name << ": peak " << one / 1000 << " MB for 1 page, " << many / 1000
            << " MB for 500" << Qt::endl;
        met &= bench::report(QLatin1String(kind.name) + QStringLiteral(": memory, 500 pages by 1"),
                             many / one, kMostMemory);
    }
    return met;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc > 1 && QByteArrayView(argv[1]) == QByteArrayView("--child")) {
        QCoreApplication application(argc, argv);
        work_folder = QString::fromLocal8Bit(argv[argc - 1]);
        return be_child(QCoreApplication::arguments());
    }
    QGuiApplication application(argc, argv);
    bench::Comparison comparison(argc, argv);
    QTemporaryDir folder;
    work_folder = folder.path();
    make_pictures();
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral(FOLIDEX_BENCH_FOLDER "/img2pdf_peer.py")});
    peer = &python;
    for (const Kind& kind : kKinds) {
        comparison.add(label(kind, kOurs), kRepetitions,
                       [&kind] { return run_ours(kind, pdf_path(kind, kOurs)); });
        comparison.add(label(kind, kPeer), kRepetitions,
                       [&kind] { return run_peer(kind, pdf_path(kind, kPeer)); });
    }
    comparison.run();
    python.closeWriteChannel();
    python.waitForFinished();
    return report_all(comparison) ? 0 : 1;
}
