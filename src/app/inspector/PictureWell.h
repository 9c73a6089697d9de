#pragma once

#include <QImage>
#include <QWidget>

namespace tarnovel::app {

/// A tile that shows a logo or a signature on the paper of the frame.
class PictureWell : public QWidget {
    Q_OBJECT

public:
    explicit PictureWell(QWidget *parent = nullptr);
    void setPicture(const QImage &picture);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QImage m_picture;
};

} // namespace tarnovel::app
