#include <QXmlStreamReader>

#include "host/render/pdf_writer.h"
#include "host/render/picture_builder.h"
#include "host/render/svg_writer.h"

#include <gtest/gtest.h>

namespace sg::test {
namespace {

using render::Pen;
using render::Picture;
using render::PictureBuilder;
using render::PicturePoint;

Picture sample() {
    Picture picture;
    picture.width = 100;
    picture.height = 50;
    PictureBuilder builder(picture);
    Pen pen;
    pen.layer = builder.layer(L"Walls & <doors> \"ä\"");
    pen.color = 0xFF8000;
    pen.width = 2.5F;
    const PicturePoint ends[] = {{1, 2}, {30.25F, 40.5F}};
    builder.line(pen, ends);
    builder.line(pen, {ends, 1});
    pen.clip = builder.clip({{0, 0}, {50, 0}, {50, 50}});
    pen.kind = Pen::Kind::evenOdd;
    pen.alpha = 51;
    const PicturePoint area[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const PicturePoint hole[] = {{2, 2}, {4, 2}, {4, 4}};
    builder.beginArea(pen);
    builder.boundary(area);
    builder.boundary(hole);
    builder.endArea();
    return picture;
}

TEST(SvgTest, IsWellFormedAndHasLayersWidthsAndHoles) {
    const std::string svg = render::toSvg(sample());
    QXmlStreamReader reader(QByteArray::fromStdString(svg));
    QStringList layers, paths;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto attributes = reader.attributes();
        if (reader.name() == QLatin1String("g")) {
            layers << attributes.value(QLatin1String("data-layer")).toString();
        }
        if (reader.name() == QLatin1String("path")) {
            paths << attributes.value(QLatin1String("d")).toString();
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    ASSERT_EQ(layers.size(), 2);
    EXPECT_EQ(layers[0], QString::fromUtf8("Walls & <doors> \"\xC3\xA4\""));
    ASSERT_EQ(paths.size(), 3);  // the clip's among them
    EXPECT_EQ(paths[1], QLatin1String("M1 2L30.25 40.5M1 2h0"));
    EXPECT_EQ(paths[2], QLatin1String("M0 0L10 0L10 10L0 10ZM2 2L4 2L4 4Z"));
    EXPECT_NE(svg.find("stroke-width=\"2.5\""), std::string::npos);
    EXPECT_NE(svg.find("fill-opacity=\"0.200\""), std::string::npos);
    EXPECT_NE(svg.find("fill-rule=\"evenodd\""), std::string::npos);
}

// The numbers that the table of contents has are the places of the objects.
TEST(PdfTest, ObjectsAreWhereTheTableHasThem) {
    const std::string pdf = render::toPdf(sample());
    EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
    EXPECT_NE(pdf.find("/MediaBox [0 0 75.0000 37.5000]"), std::string::npos);
    const size_t start = std::stoul(pdf.substr(pdf.rfind("startxref") + 10));
    ASSERT_EQ(pdf.substr(start, 4), "xref");
    const size_t count = std::stoul(pdf.substr(start + 7));
    EXPECT_EQ(count, 6U);  // with the free one
    const size_t rows = pdf.find('\n', start + 5) + 1;
    for (size_t number = 1; number < count; ++number) {
        const size_t offset = std::stoul(pdf.substr(rows + number * 20, 10));
        const std::string head = std::to_string(number) + " 0 obj";
        EXPECT_EQ(pdf.substr(offset, head.size()), head);
    }
}

}  // namespace
}  // namespace sg::test
