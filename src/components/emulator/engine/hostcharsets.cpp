#include <emulator/engine/hostcharsets.h>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace kestrune::emu {
namespace {

struct HostCharsetRow
{
    HostCharset charset;
    std::string_view name;
    std::string_view shortName;
    std::u16string_view glyphs; // from 0xA0 on where C1 controls lie below, else from 0x80 on
};

constexpr size_t kAboveC1 = 96, kUpperHalf128 = 128;

// In the order of the enumeration. U+2426 stands where an encoding has no character.
// clang-format off
constexpr HostCharsetRow kHostCharsets[] = {
    {HostCharset::Utf8, "UTF-8", "UTF8", {}},
    {HostCharset::Latin1, "ISO-8859-1", "Latin1",
      u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
      u"àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ"},
    {HostCharset::Latin2, "ISO-8859-2", "Latin2",
      u"\u00A0Ą˘Ł¤ĽŚ§¨ŠŞŤŹ\u00ADŽŻ°ą˛ł´ľśˇ¸šşťź˝žż"
      u"ŔÁÂĂÄĹĆÇČÉĘËĚÍÎĎĐŃŇÓÔŐÖ×ŘŮÚŰÜÝŢß"
      u"ŕáâăäĺćçčéęëěíîďđńňóôőö÷řůúűüýţ˙"},
    {HostCharset::Latin3, "ISO-8859-3", "Latin3",
      u"\u00A0Ħ˘£¤␦Ĥ§¨İŞĞĴ\u00AD␦Ż°ħ²³´µĥ·¸ışğĵ½␦ż"
      u"ÀÁÂ␦ÄĊĈÇÈÉÊËÌÍÎÏ␦ÑÒÓÔĠÖ×ĜÙÚÛÜŬŜß"
      u"àáâ␦äċĉçèéêëìíîï␦ñòóôġö÷ĝùúûüŭŝ˙"},
    {HostCharset::Latin4, "ISO-8859-4", "Latin4",
      u"\u00A0ĄĸŖ¤ĨĻ§¨ŠĒĢŦ\u00ADŽ¯°ą˛ŗ´ĩļˇ¸šēģŧŊžŋ"
      u"ĀÁÂÃÄÅÆĮČÉĘËĖÍÎĪĐŅŌĶÔÕÖ×ØŲÚÛÜŨŪß"
      u"āáâãäåæįčéęëėíîīđņōķôõö÷øųúûüũū˙"},
    {HostCharset::Cyrillic, "ISO-8859-5", "Cyrillic",
      u"\u00A0ЁЂЃЄЅІЇЈЉЊЋЌ\u00ADЎЏАБВГДЕЖЗИЙКЛМНОП"
      u"РСТУФХЦЧШЩЪЫЬЭЮЯабвгдежзийклмноп"
      u"рстуфхцчшщъыьэюя№ёђѓєѕіїјљњћќ§ўџ"},
    {HostCharset::Arabic, "ISO-8859-6", "Arabic",
      u"\u00A0␦␦␦¤␦␦␦␦␦␦␦،\u00AD␦␦␦␦␦␦␦␦␦␦␦␦␦\u061B␦␦␦\u061F"
      u"␦\u0621\u0622\u0623\u0624\u0625\u0626\u0627\u0628\u0629\u062A\u062B\u062C\u062D\u062E\u062F\u0630\u0631\u0632\u0633\u0634\u0635\u0636\u0637\u0638\u0639\u063A␦␦␦␦␦"
      u"\u0640\u0641\u0642\u0643\u0644\u0645\u0646\u0647\u0648\u0649\u064A\u064B\u064C\u064D\u064E\u064F\u0650\u0651\u0652␦␦␦␦␦␦␦␦␦␦␦␦␦"},
    {HostCharset::Greek, "ISO-8859-7", "Greek",
      u"\u00A0‘’£€₯¦§¨©ͺ«¬\u00AD␦―°±²³΄΅Ά·ΈΉΊ»Ό½ΎΏ"
      u"ΐΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡ␦ΣΤΥΦΧΨΩΪΫάέήί"
      u"ΰαβγδεζηθικλμνξοπρςστυφχψωϊϋόύώ␦"},
    {HostCharset::Hebrew, "ISO-8859-8", "Hebrew",
      u"\u00A0␦¢£¤¥¦§¨©×«¬\u00AD®¯°±²³´µ¶·¸¹÷»¼½¾␦"
      u"␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦␦‗"
      u"\u05D0\u05D1\u05D2\u05D3\u05D4\u05D5\u05D6\u05D7\u05D8\u05D9\u05DA\u05DB\u05DC\u05DD\u05DE\u05DF\u05E0\u05E1\u05E2\u05E3\u05E4\u05E5\u05E6\u05E7\u05E8\u05E9\u05EA␦␦\u200E\u200F␦"},
    {HostCharset::Latin5, "ISO-8859-9", "Latin5",
      u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏĞÑÒÓÔÕÖ×ØÙÚÛÜİŞß"
      u"àáâãäåæçèéêëìíîïğñòóôõö÷øùúûüışÿ"},
    {HostCharset::Latin6, "ISO-8859-10", "Latin6",
      u"\u00A0ĄĒĢĪĨĶ§ĻĐŠŦŽ\u00ADŪŊ°ąēģīĩķ·ļđšŧž―ūŋ"
      u"ĀÁÂÃÄÅÆĮČÉĘËĖÍÎÏÐŅŌÓÔÕÖŨØŲÚÛÜÝÞß"
      u"āáâãäåæįčéęëėíîïðņōóôõöũøųúûüýþĸ"},
    {HostCharset::Thai, "ISO-8859-11", "TIS-620",
      u"\u00A0กขฃคฅฆงจฉชซฌญฎฏฐฑฒณดตถทธนบปผฝพฟ"
      u"ภมยรฤลฦวศษสหฬอฮฯะ\u0E31าำ\u0E34\u0E35\u0E36\u0E37\u0E38\u0E39\u0E3A␦␦␦␦฿"
      u"เแโใไๅๆ\u0E47\u0E48\u0E49\u0E4A\u0E4B\u0E4C\u0E4D\u0E4E๏๐๑๒๓๔๕๖๗๘๙๚๛␦␦␦␦"},
    {HostCharset::Latin7, "ISO-8859-13", "Latin7",
      u"\u00A0”¢£¤„¦§Ø©Ŗ«¬\u00AD®Æ°±²³“µ¶·ø¹ŗ»¼½¾æ"
      u"ĄĮĀĆÄÅĘĒČÉŹĖĢĶĪĻŠŃŅÓŌÕÖ×ŲŁŚŪÜŻŽß"
      u"ąįāćäåęēčéźėģķīļšńņóōõö÷ųłśūüżž’"},
    {HostCharset::Latin8, "ISO-8859-14", "Latin8",
      u"\u00A0Ḃḃ£ĊċḊ§Ẁ©ẂḋỲ\u00AD®ŸḞḟĠġṀṁ¶ṖẁṗẃṠỳẄẅṡ"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏŴÑÒÓÔÕÖṪØÙÚÛÜÝŶß"
      u"àáâãäåæçèéêëìíîïŵñòóôõöṫøùúûüýŷÿ"},
    {HostCharset::Latin9, "ISO-8859-15", "Latin9",
      u"\u00A0¡¢£€¥Š§š©ª«¬\u00AD®¯°±²³Žµ¶·ž¹º»ŒœŸ¿"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
      u"àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ"},
    {HostCharset::Latin10, "ISO-8859-16", "Latin10",
      u"\u00A0ĄąŁ€„Š§š©Ș«Ź\u00ADźŻ°±ČłŽ”¶·žčș»ŒœŸż"
      u"ÀÁÂĂÄĆÆÇÈÉÊËÌÍÎÏĐŃÒÓÔŐÖŚŰÙÚÛÜĘȚß"
      u"àáâăäćæçèéêëìíîïđńòóôőöśűùúûüęțÿ"},
    {HostCharset::Cp437, "IBM437", "CP437",
      u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒ"
      u"áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp737, "IBM737", "CP737",
      u"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩαβγδεζηθ"
      u"ικλμνξοπρσςτυφχψ░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"ωάέήϊίόύϋώΆΈΉΊΌΎΏ±≥≤ΪΫ÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp775, "IBM775", "CP775",
      u"ĆüéāäģåćłēŖŗīŹÄÅÉæÆōöĢ¢ŚśÖÜø£Ø×¤"
      u"ĀĪóŻżź”¦©®¬½¼Ł«»░▒▓│┤ĄČĘĖ╣║╗╝ĮŠ┐"
      u"└┴┬├─┼ŲŪ╚╔╩╦╠═╬Žąčęėįšųūž┘┌█▄▌▐▀"
      u"ÓßŌŃõÕµńĶķĻļņĒŅ’\u00AD±“¾¶§÷„°∙·¹³²■\u00A0"},
    {HostCharset::Cp850, "IBM850", "CP850",
      u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜø£Ø×ƒ"
      u"áíóúñÑªº¿®¬½¼¡«»░▒▓│┤ÁÂÀ©╣║╗╝¢¥┐"
      u"└┴┬├─┼ãÃ╚╔╩╦╠═╬¤ðÐÊËÈıÍÎÏ┘┌█▄¦Ì▀"
      u"ÓßÔÒõÕµþÞÚÛÙýÝ¯´\u00AD±‗¾¶§÷¸°¨·¹³²■\u00A0"},
    {HostCharset::Cp852, "IBM852", "CP852",
      u"ÇüéâäůćçłëŐőîŹÄĆÉĹĺôöĽľŚśÖÜŤťŁ×č"
      u"áíóúĄąŽžĘę¬źČş«»░▒▓│┤ÁÂĚŞ╣║╗╝Żż┐"
      u"└┴┬├─┼Ăă╚╔╩╦╠═╬¤đĐĎËďŇÍÎě┘┌█▄ŢŮ▀"
      u"ÓßÔŃńňŠšŔÚŕŰýÝţ´\u00AD˝˛ˇ˘§÷¸°¨˙űŘř■\u00A0"},
    {HostCharset::Cp855, "IBM855", "CP855",
      u"ђЂѓЃёЁєЄѕЅіІїЇјЈљЉњЊћЋќЌўЎџЏюЮъЪ"
      u"аАбБцЦдДеЕфФгГ«»░▒▓│┤хХиИ╣║╗╝йЙ┐"
      u"└┴┬├─┼кК╚╔╩╦╠═╬¤лЛмМнНоОп┘┌█▄Пя▀"
      u"ЯрРсСтТуУжЖвВьЬ№\u00ADыЫзЗшШэЭщЩчЧ§■\u00A0"},
    {HostCharset::Cp857, "IBM857", "CP857",
      u"ÇüéâäàåçêëèïîıÄÅÉæÆôöòûùİÖÜø£ØŞş"
      u"áíóúñÑĞğ¿®¬½¼¡«»░▒▓│┤ÁÂÀ©╣║╗╝¢¥┐"
      u"└┴┬├─┼ãÃ╚╔╩╦╠═╬¤ºªÊËÈ␦ÍÎÏ┘┌█▄¦Ì▀"
      u"ÓßÔÒõÕµ␦×ÚÛÙìÿ¯´\u00AD±␦¾¶§÷¸°¨·¹³²■\u00A0"},
    {HostCharset::Cp858, "IBM858", "CP858",
      u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜø£Ø×ƒ"
      u"áíóúñÑªº¿®¬½¼¡«»░▒▓│┤ÁÂÀ©╣║╗╝¢¥┐"
      u"└┴┬├─┼ãÃ╚╔╩╦╠═╬¤ðÐÊËÈ€ÍÎÏ┘┌█▄¦Ì▀"
      u"ÓßÔÒõÕµþÞÚÛÙýÝ¯´\u00AD±‗¾¶§÷¸°¨·¹³²■\u00A0"},
    {HostCharset::Cp860, "IBM860", "CP860",
      u"ÇüéâãàÁçêÊèÍÔìÃÂÉÀÈôõòÚùÌÕÜ¢£Ù₧Ó"
      u"áíóúñÑªº¿Ò¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp861, "IBM861", "CP861",
      u"ÇüéâäàåçêëèÐðÞÄÅÉæÆôöþûÝýÖÜø£Ø₧ƒ"
      u"áíóúÁÍÓÚ¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp862, "IBM862", "CP862",
      u"\u05D0\u05D1\u05D2\u05D3\u05D4\u05D5\u05D6\u05D7\u05D8\u05D9\u05DA\u05DB\u05DC\u05DD\u05DE\u05DF\u05E0\u05E1\u05E2\u05E3\u05E4\u05E5\u05E6\u05E7\u05E8\u05E9\u05EA¢£¥₧ƒ"
      u"áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp863, "IBM863", "CP863",
      u"ÇüéâÂà¶çêëèïî‗À§ÉÈÊôËÏûù¤ÔÜ¢£ÙÛƒ"
      u"¦´óú¨¸³¯Î⌐¬½¼¾«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp865, "IBM865", "CP865",
      u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜø£Ø₧ƒ"
      u"áíóúñÑªº¿⌐¬½¼¡«¤░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0"},
    {HostCharset::Cp866, "IBM866", "CP866",
      u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ"
      u"абвгдежзийклмноп░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
      u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
      u"рстуфхцчшщъыьэюяЁёЄєЇїЎў°∙·√№¤■\u00A0"},
    {HostCharset::Windows1250, "windows-1250", "CP1250",
      u"€␦‚␦„…†‡␦‰Š‹ŚŤŽŹ␦‘’“”•–—␦™š›śťžź"
      u"\u00A0ˇ˘Ł¤Ą¦§¨©Ş«¬\u00AD®Ż°±˛ł´µ¶·¸ąş»Ľ˝ľż"
      u"ŔÁÂĂÄĹĆÇČÉĘËĚÍÎĎĐŃŇÓÔŐÖ×ŘŮÚŰÜÝŢß"
      u"ŕáâăäĺćçčéęëěíîďđńňóôőö÷řůúűüýţ˙"},
    {HostCharset::Windows1251, "windows-1251", "CP1251",
      u"ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—␦™љ›њќћџ"
      u"\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї°±Ііґµ¶·ё№є»јЅѕї"
      u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ"
      u"абвгдежзийклмнопрстуфхцчшщъыьэюя"},
    {HostCharset::Windows1252, "windows-1252", "CP1252",
      u"€␦‚ƒ„…†‡ˆ‰Š‹Œ␦Ž␦␦‘’“”•–—˜™š›œ␦žŸ"
      u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
      u"àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ"},
    {HostCharset::Windows1253, "windows-1253", "CP1253",
      u"€␦‚ƒ„…†‡␦‰␦‹␦␦␦␦␦‘’“”•–—␦™␦›␦␦␦␦"
      u"\u00A0΅Ά£¤¥¦§¨©␦«¬\u00AD®―°±²³΄µ¶·ΈΉΊ»Ό½ΎΏ"
      u"ΐΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡ␦ΣΤΥΦΧΨΩΪΫάέήί"
      u"ΰαβγδεζηθικλμνξοπρςστυφχψωϊϋόύώ␦"},
    {HostCharset::Windows1254, "windows-1254", "CP1254",
      u"€␦‚ƒ„…†‡ˆ‰Š‹Œ␦␦␦␦‘’“”•–—˜™š›œ␦␦Ÿ"
      u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
      u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏĞÑÒÓÔÕÖ×ØÙÚÛÜİŞß"
      u"àáâãäåæçèéêëìíîïğñòóôõö÷øùúûüışÿ"},
    {HostCharset::Windows1257, "windows-1257", "CP1257",
      u"€␦‚␦„…†‡␦‰␦‹␦¨ˇ¸␦‘’“”•–—␦™␦›␦¯˛␦"
      u"\u00A0␦¢£¤␦¦§Ø©Ŗ«¬\u00AD®Æ°±²³´µ¶·ø¹ŗ»¼½¾æ"
      u"ĄĮĀĆÄÅĘĒČÉŹĖĢĶĪĻŠŃŅÓŌÕÖ×ŲŁŚŪÜŻŽß"
      u"ąįāćäåęēčéźėģķīļšńņóōõö÷ųłśūüżž˙"},
    {HostCharset::Koi8R, "KOI8-R", "KOI8R",
      u"─│┌┐└┘├┤┬┴┼▀▄█▌▐░▒▓⌠■∙√≈≤≥\u00A0⌡°²·÷"
      u"═║╒ё╓╔╕╖╗╘╙╚╛╜╝╞╟╠╡Ё╢╣╤╥╦╧╨╩╪╫╬©"
      u"юабцдефгхийклмнопярстужвьызшэщчъ"
      u"ЮАБЦДЕФГХИЙКЛМНОПЯРСТУЖВЬЫЗШЭЩЧЪ"},
    {HostCharset::Koi8U, "KOI8-U", "KOI8U",
      u"─│┌┐└┘├┤┬┴┼▀▄█▌▐░▒▓⌠■∙√≈≤≥\u00A0⌡°²·÷"
      u"═║╒ёє╔ії╗╘╙╚╛ґ╝╞╟╠╡ЁЄ╣ІЇ╦╧╨╩╪Ґ╬©"
      u"юабцдефгхийклмнопярстужвьызшэщчъ"
      u"ЮАБЦДЕФГХИЙКЛМНОПЯРСТУЖВЬЫЗШЭЩЧЪ"},
};
// clang-format on

consteval bool InOrderAndWhole()
{
    for (size_t i = 0; i < std::size(kHostCharsets); ++i) {
        const size_t length = kHostCharsets[i].glyphs.size();
        if (size_t(kHostCharsets[i].charset) != i || (i != 0 && length != kAboveC1 && length != kUpperHalf128))
            return false;
    }
    return true;
}
static_assert(InOrderAndWhole());

bool IsSameName(std::string_view one, std::string_view other)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

} // namespace

std::optional<HostCharset> FindHostCharset(std::string_view name)
{
    for (const HostCharsetRow& row : kHostCharsets)
        if (IsSameName(name, row.name) || IsSameName(name, row.shortName))
            return row.charset;
    return std::nullopt;
}

std::vector<std::string_view> HostCharsetNames()
{
    std::vector<std::string_view> names;
    for (const HostCharsetRow& row : kHostCharsets)
        names.push_back(row.name);
    return names;
}

char32_t HostPoint(HostCharset charset, uint8_t byte)
{
    const std::u16string_view glyphs = kHostCharsets[size_t(charset)].glyphs;
    const size_t first = 0x100 - glyphs.size();
    return byte < first ? char32_t(byte) : char32_t(glyphs[byte - first]);
}

bool CharsetAllowsC1(HostCharset charset) { return kHostCharsets[size_t(charset)].glyphs.size() == kAboveC1; }

std::optional<std::u16string> MappedUpperHalf(HostCharset charset, std::string_view mapping)
{
    std::u16string upper;
    for (unsigned byte = 0x80; byte <= 0xFF; ++byte)
        upper += char16_t(HostPoint(charset, uint8_t(byte)));
    const auto isSeparator = [](char c) { return c == ' ' || c == ',' || c == ';'; };
    const char* at = mapping.data();
    const char* const end = at + mapping.size();
    while (at != end) {
        if (isSeparator(*at)) {
            ++at;
            continue;
        }
        unsigned byte = 0;
        unsigned point = 0;
        const auto [afterByte, byteError] = std::from_chars(at, end, byte, 16);
        if (byteError != std::errc() || afterByte == end || *afterByte != '=')
            return std::nullopt;
        const auto [afterPoint, pointError] = std::from_chars(afterByte + 1, end, point, 16);
        const bool isCharacter =
            point >= 0x20 && (point < 0x7F || point >= 0xA0) && point <= 0xFFFD && (point < 0xD800 || point > 0xDFFF);
        if (pointError != std::errc() || byte < 0x80 || byte > 0xFF || !isCharacter ||
            (afterPoint != end && !isSeparator(*afterPoint)))
            return std::nullopt;
        upper[byte - 0x80] = char16_t(point);
        at = afterPoint;
    }
    return upper;
}

} // namespace kestrune::emu
