#include "host/render/render.h"

#include <fmt/xchar.h>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/session.h"
#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/exchange/drawing_files.h"
#include "host/render/painter.h"
#include "host/render/pdf_writer.h"
#include "host/render/svg_writer.h"
#include "host/seam/file_error.h"
#include "host/system/files.h"
#include "host/system/paths.h"
#include "platform/db/database.h"

namespace sg::app {
namespace {

enum class Format : uint8_t { png, svg, pdf };

constexpr double kPdfPixelsPerMillimetre = 300 / 25.4;  // of sheets
constexpr uint32_t kBlack = 0x000000;

std::optional<Format> formatOf(const std::wstring& path) {
    const std::wstring folded = lowerCased(path);
    if (folded.ends_with(L".png")) return Format::png;
    if (folded.ends_with(L".svg")) return Format::svg;
    if (folded.ends_with(L".pdf")) return Format::pdf;
    return std::nullopt;
}

render::Options optionsOf(const PictureArguments& arguments, Format format) {
    render::Options options;
    options.view = arguments.view == L"front" ? render::View::front
                   : arguments.view == L"iso" ? render::View::isometric
                                              : render::View::top;
    if (arguments.width > 0) {
        options.width = arguments.width;
        options.height = arguments.height;
    }
    if (const std::vector<double>& corners = arguments.window; corners.size() == 4) {
        options.window.emplace();
        options.window->add(corners[0], corners[1]);
        options.window->add(corners[2], corners[3]);
    }
    if (arguments.isBlack) options.ground = kBlack;
    options.layers = arguments.layers;
    options.layout = arguments.layout;
    options.lineWeights = !arguments.hasNoLineWeights;
    if (format == Format::pdf) options.pixelsPerMillimetre = kPdfPixelsPerMillimetre;
    return options;
}

void read(Session& session, AcDbDatabase& database, const std::wstring& file) {
    const ResolvedPath found = resolvePath(absolutePath(file));
    if (!found.exists) throw FileError(L"no such drawing: " + found.path);
    try {
        for (const std::wstring& warning : exchange::readFile(database, found.path))
            session.host().output().reportError(warning);
    } catch (const dxf::Error& error) {
        throw FileError(error.text());
    }
}

std::string contentOf(const render::Picture& picture, Format format) {
    if (format == Format::svg) return render::toSvg(picture);
    if (format == Format::pdf) return render::toPdf(picture);
    render::Painter* const painter = render::painter();
    if (painter == nullptr) {
        throw FileError(
            L"pictures cannot be painted: the library lib/libswiftgate-graphics.so is "
            L"not there or does not load; .svg and .pdf need no library");
    }
    std::string content = painter->png(picture);
    if (content.empty()) {
        throw FileError(fmt::format(L"there is no memory for {:g} by {:g} pixels", picture.width,
                                    picture.height));
    }
    return content;
}

void reportUndrawn(Session& session, const render::Undrawn& undrawn) {
    std::wstring text;
    for (const auto& [name, count] : undrawn)
        text += fmt::format(L"{}{} {}", text.empty() ? L"" : L", ", count, name);
    if (!text.empty()) session.complain(L"not in the picture: " + text);
}

int renderDrawing(Session& session, const Arguments& arguments) {
    const std::wstring& output = arguments.drawingFile.output;
    const std::optional<Format> format = formatOf(output);
    if (!format) {
        session.complain(output + L": a picture's name ends in .png, .svg or .pdf");
        return kWrongUsage;
    }
    // Modules bring the classes of their entities.
    session.start();
    AcDbDatabase database(false, true);
    read(session, database, arguments.drawingFile.file);
    render::Rendering rendering;
    try {
        render::Options options = optionsOf(arguments.picture, *format);
        std::wstring drawing;
        database.getFilename(drawing);
        options.findImage = render::findBesideDrawing(drawing, [&](const std::wstring& name) {
            return session.host().findSupportFile(name).value_or(L"");
        });
        rendering = render::render(database, options);
    } catch (const render::NotInDrawing& error) {
        session.complain(arguments.drawingFile.file + L": " + error.text());
        return kWrongUsage;
    }
    const FileResult written =
        writeFileAtomically(absolutePath(output), contentOf(rendering.picture, *format));
    if (!written) throw FileError(written.error);
    for (const std::wstring& complaint : rendering.complaints)
        session.complain(complaint);
    reportUndrawn(session, rendering.undrawn);
    return kDone;
}

}  // namespace

int render(const Arguments& arguments) {
    Session session(arguments, false);
    return session.conclude([&] { return renderDrawing(session, arguments); });
}

}  // namespace sg::app
