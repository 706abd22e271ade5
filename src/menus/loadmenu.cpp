#include <menus/loadmenu.h>

#include <menus/menufile.h>
#include <platform/files.h>
#include <platform/textcodec.h>
#include <settings/layer.h>
#include <support/errors.h>

namespace kestrune {

using namespace Qt::StringLiterals;

MenuSource LoadMenu(taMenuBar& menu, const SettingsLayer& layer)
{
    const QString section = u"Menu"_s;
    const QString master = layer.folders.ProgramDir + kMenuFileName;
    const QString personal = layer.folders.AppDataDir + kMenuFileName;
    // A count of bands is what makes a file a menu at all.
    const auto load = [&](const QString& file) {
        return layer.profile.ProfileGetInt(section, u"BandCount"_s, -1, file) >= 0 && LoadMenuFile(menu, layer, file);
    };
    if (!layer.profile.ProfileGetBool(section, u"OverrideUserMenu"_s, false, master) && load(personal))
        return MenuSource::Personal;
    if (load(master))
        return MenuSource::Master;
    menu.SetBands(LoadMenuBag(BuiltInMenu()));
    return MenuSource::BuiltIn;
}

bool LoadMenuFile(taMenuBar& menu, const SettingsLayer& layer, const QString& fileName)
{
    return Silently([&] {
        const QByteArray content = layer.profile.Files().Read(fileName);
        menu.SetBands(LoadMenuBag(DecodeText(content, DetectEncoding(content))));
    });
}

} // namespace kestrune
