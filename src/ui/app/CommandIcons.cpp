#include "app/CommandIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <functional>

namespace zdtui {
namespace {

constexpr int IconSize = 16;
const QColor Ink(40, 40, 40);
const QColor Paper(255, 255, 255);
const QColor Folder(230, 190, 60);
const QColor Mark(30, 80, 200);
const QColor Alarm(200, 40, 40);

QIcon Draw(const std::function<void(QPainter&)>& paint) {
    QPixmap pixmap(IconSize, IconSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing, false);
    paint(painter);
    painter.end();
    return QIcon(pixmap);
}

void Page(QPainter& p, const QRect& r) {
    p.setPen(Ink);
    p.setBrush(Paper);
    p.drawRect(r);
}

void TextLines(QPainter& p, int left, int right, int top, int count) {
    p.setPen(QColor(120, 120, 120));
    for (int i = 0; i < count; ++i)
        p.drawLine(left, top + 2 * i, right, top + 2 * i);
}

void Lens(QPainter& p, int x, int y) {
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(QPen(Ink, 1.5));
    p.setBrush(QColor(200, 230, 255));
    p.drawEllipse(QRectF(x, y, 7, 7));
    p.setPen(QPen(Ink, 2.0));
    p.drawLine(QPointF(x + 6.5, y + 6.5), QPointF(x + 10, y + 10));
    p.setRenderHint(QPainter::Antialiasing, false);
}

// A small triangle at the lower right: down for "next", up for "previous".
void Arrow(QPainter& p, bool down) {
    QPainterPath path;
    if (down) {
        path.moveTo(10, 10);
        path.lineTo(16, 10);
        path.lineTo(13, 15);
    } else {
        path.moveTo(10, 15);
        path.lineTo(16, 15);
        path.lineTo(13, 10);
    }
    path.closeSubpath();
    p.fillPath(path, Alarm);
}

void Flag(QPainter& p) {
    p.setPen(Ink);
    p.drawLine(3, 1, 3, 14);
    QPainterPath path;
    path.moveTo(4, 1);
    path.lineTo(12, 4);
    path.lineTo(4, 7);
    path.closeSubpath();
    p.fillPath(path, Mark);
}

void Letter(QPainter& p, const QString& letter, const QColor& colour) {
    QFont font = p.font();
    font.setPixelSize(13);
    font.setBold(true);
    p.setFont(font);
    p.setPen(colour);
    p.drawText(QRect(0, 0, IconSize, IconSize), Qt::AlignCenter, letter);
}

QIcon FrameIcon(FrameCommand command) {
    switch (command) {
    case FrameCommand::FileOpen:
        return Draw([](QPainter& p) {
            p.setPen(Ink);
            p.setBrush(Folder);
            p.drawRect(1, 4, 13, 9);
            p.drawRect(1, 2, 5, 2);
        });
    case FrameCommand::AppAbout:
        return Draw([](QPainter& p) { Letter(p, "?", Mark); });
    case FrameCommand::Help:
        return Draw([](QPainter& p) { Letter(p, "?", Alarm); });
    default:
        // Commands that stand on no tool bar go without a picture.
        return QIcon();
    }
}

QIcon ViewIcon(ViewCommand command) {
    switch (command) {
    case ViewCommand::Print:
        return Draw([](QPainter& p) {
            Page(p, QRect(4, 1, 7, 6));
            p.setBrush(QColor(170, 170, 170));
            p.drawRect(1, 7, 13, 6);
        });
    case ViewCommand::PrintPreview:
        return Draw([](QPainter& p) {
            Page(p, QRect(1, 1, 10, 13));
            Lens(p, 5, 5);
        });
    case ViewCommand::SaveAsAscii:
        return Draw([](QPainter& p) {
            Page(p, QRect(2, 1, 11, 13));
            TextLines(p, 4, 11, 4, 5);
        });
    case ViewCommand::SessionInfo:
        return Draw([](QPainter& p) {
            p.setRenderHint(QPainter::Antialiasing, true);
            p.setPen(Mark);
            p.setBrush(Mark);
            p.drawEllipse(QRectF(1, 1, 14, 14));
            Letter(p, "i", Paper);
        });
    case ViewCommand::Find:
        return Draw([](QPainter& p) { Lens(p, 2, 2); });
    case ViewCommand::FindNext:
        return Draw([](QPainter& p) {
            Lens(p, 0, 0);
            Arrow(p, true);
        });
    case ViewCommand::FindPrevious:
        return Draw([](QPainter& p) {
            Lens(p, 0, 0);
            Arrow(p, false);
        });
    case ViewCommand::CanFilter:
        return Draw([](QPainter& p) {
            QPainterPath funnel;
            funnel.moveTo(1, 2);
            funnel.lineTo(15, 2);
            funnel.lineTo(9, 8);
            funnel.lineTo(9, 14);
            funnel.lineTo(7, 14);
            funnel.lineTo(7, 8);
            funnel.closeSubpath();
            p.fillPath(funnel, Mark);
        });
    case ViewCommand::StyleKLine:
        return Draw([](QPainter& p) { Letter(p, "K", Ink); });
    case ViewCommand::StyleCan:
        return Draw([](QPainter& p) { Letter(p, "C", Ink); });
    case ViewCommand::ToggleBookmark:
        return Draw([](QPainter& p) { Flag(p); });
    case ViewCommand::NextBookmark:
        return Draw([](QPainter& p) {
            Flag(p);
            Arrow(p, true);
        });
    case ViewCommand::PreviousBookmark:
        return Draw([](QPainter& p) {
            Flag(p);
            Arrow(p, false);
        });
    case ViewCommand::ClearBookmarks:
        return Draw([](QPainter& p) {
            Flag(p);
            p.setPen(QPen(Alarm, 2));
            p.drawLine(9, 9, 15, 15);
            p.drawLine(15, 9, 9, 15);
        });
    case ViewCommand::IdentifierStatistics:
        return Draw([](QPainter& p) {
            // Bars of a histogram.
            p.fillRect(2, 9, 3, 6, Mark);
            p.fillRect(7, 3, 3, 12, Mark);
            p.fillRect(12, 6, 3, 9, Mark);
        });
    case ViewCommand::SaveAs:
    case ViewCommand::ToggleNamedBookmark:
    case ViewCommand::BookmarkList:
    case ViewCommand::Filter:
        // Menu-only commands of the XML documents: no tool bar picture.
        return QIcon();
    }
    return QIcon();
}

} // namespace

QIcon CommandIcon(const MenuCommand& command) {
    if (const auto* frameCommand = std::get_if<FrameCommand>(&command))
        return FrameIcon(*frameCommand);
    return ViewIcon(std::get<ViewCommand>(command));
}

QIcon ProgramIcon(int resourceId) {
    const QColor background = resourceId == 130 ? QColor(0, 120, 90) : resourceId == 131 ? QColor(120, 30, 40) : Mark;
    const QString letter = resourceId == 130 ? "O" : "Z";
    QIcon icon;
    for (int size : {16, 32, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(Qt::NoPen);
        p.setBrush(background);
        p.drawRoundedRect(QRectF(0, 0, size, size), size / 5.0, size / 5.0);
        // A trace line under the letter.
        p.setPen(QPen(QColor(255, 220, 80), size / 16.0));
        const double y = size * 0.82;
        p.drawPolyline(
            QPolygonF({QPointF(size * 0.1, y), QPointF(size * 0.3, y), QPointF(size * 0.4, y - size * 0.1),
                       QPointF(size * 0.5, y + size * 0.05), QPointF(size * 0.6, y), QPointF(size * 0.9, y)}));
        QFont font = p.font();
        font.setPixelSize(int(size * 0.6));
        font.setBold(true);
        p.setFont(font);
        p.setPen(Qt::white);
        p.drawText(QRectF(0, 0, size, size * 0.8), Qt::AlignCenter, letter);
        p.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace zdtui
