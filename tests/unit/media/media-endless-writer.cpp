// Appends a frame to a movie every so many milliseconds of real time, and says the number of each on a line
// of its own, until it is killed. Arguments: the movie's path, the milliseconds, and after how many frames it
// appends no more.
#include "OrvanePlatform/media/LazyMedia.h"

#include <QCoreApplication>
#include <QStringList>

#include <chrono>
#include <cstdio>
#include <thread>

using namespace orvane;

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    const std::chrono::milliseconds period(arguments[2].toInt());
    const int frames = arguments[3].toInt();

    media::LazyMedia backend;
    const std::unique_ptr<VideoWriter> writer =
        backend.createMp4(arguments[1], {QSize(64, 48), 20, 100'000, 40});
    QImage picture(64, 48, QImage::Format_RGB32);
    const auto begin = std::chrono::steady_clock::now();
    for (int frame = 0; frame < frames; ++frame) {
        std::this_thread::sleep_until(begin + frame * period);
        picture.fill(frame % 2 == 0 ? Qt::red : Qt::blue);
        if (!writer->append(picture, frame * period))
            return 3;
        std::printf("%d\n", frame);
        std::fflush(stdout);
    }
    std::this_thread::sleep_for(std::chrono::minutes(10));
    return 4;
}
