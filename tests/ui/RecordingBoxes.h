#pragma once

#include "app/Boxes.h"

#include <QStringList>
#include <QVector>

// Installs itself for its lifetime: keeps every box and answers questions with `answerYes`.
class RecordingBoxes final : public zdtui::Boxes {
public:
    struct Box {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        bool question;
    };
    RecordingBoxes() { zdtui::Boxes::install(this); }
    ~RecordingBoxes() override { zdtui::Boxes::install(nullptr); }
    void show(QWidget*, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        boxes.push_back({title, text, icon, false});
    }
    bool askYesNo(QWidget*, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        boxes.push_back({title, text, icon, true});
        return answerYes;
    }
    QStringList Texts() const {
        QStringList texts;
        for (const Box& box : boxes)
            texts << box.text;
        return texts;
    }

    QVector<Box> boxes;
    bool answerYes = false;
};
