#include "host/model/curves/chords.h"

namespace sg::model {

namespace {

constexpr int kMostHalvings = 10;

// Appends points between two parameters, the last one included, so that chords stand off the curve
// by no more than `deviation`.
void appendChords(const Piece& piece, double from, double to, double deviation, int halvings,
                  std::vector<AcGePoint3d>& points) {
    const AcGePoint3d start = piece.at(from);
    const AcGePoint3d end = piece.at(to);
    const double middle = (from + to) / 2;
    const Piece chord = Piece::line(start, end);
    const auto off = [&](double t) {
        const AcGePoint3d point = piece.at(t);
        return chord.at(chord.closest(point)).distanceTo(point);
    };
    const bool flat = off(middle) <= deviation && off((from + middle) / 2) <= deviation &&
                      off((middle + to) / 2) <= deviation;
    if (flat || halvings == 0) {
        points.push_back(end);
        return;
    }
    appendChords(piece, from, middle, deviation, halvings - 1, points);
    appendChords(piece, middle, to, deviation, halvings - 1, points);
}

}  // namespace

std::vector<AcGePoint3d> chordsOf(const Piece& piece, double deviation) {
    std::vector<AcGePoint3d> points{piece.start()};
    const std::vector<double> stops = piece.samples();
    for (size_t i = 1; i < stops.size(); ++i) {
        appendChords(piece, stops[i - 1], stops[i], deviation, kMostHalvings, points);
    }
    return points;
}

}  // namespace sg::model
