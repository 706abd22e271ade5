#pragma once

// Streams that hosts send or could send, of every form that the parser has. Finds of the fuzzer stand at the end.

#include <string>
#include <vector>

namespace kestrune::emu {

inline std::vector<std::string> Corpus()
{
    using namespace std::string_literals;
    return {
        "plain text\r\nwith lines\r\n\tand tabs\b\bx",
        "\x1b[1;1H\x1b[2J\x1b[3;4r\x1b[4;1H\n\n\x1bM\x1b[r\x1b[5;10Hx\x1b[K\x1b[1J\x1b[2@\x1b[3P\x1b[L\x1b[M\x1b[X",
        "\x1b[1;4:3;38;2;1;2;3;48:5:9;58:2::1:2:3mstyled\x1b[0m plain \x1b[7mreverse\x1b[27m\x1b[38;5;1m!",
        "0123456789012345678901234567890123456789中文wrap over the edge of the row 日本語\xe2\x80\x8d",
        "e\xcc\x81\xcc\x82 👩‍👧‍👦 👍🏽 🇩🇪🇫🇷 ❤️ 한글 "
        "\xe1\x84\x92\xe1\x85\xa1\xe1\x86\xab "
        "नि "
        "\xc2\xad\xe2\x80\xae",
        "\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80\xe4\xb8\xf0\x9f\x98 broken \x80\xff\xfe",
        "\x1b(0lqqk\x1b(B\x1b)0\x0ex\x0f\x1b*<\x1bNd\x1b+0\x1bOq\x1b(%5d\x1b(B\x1b~\x1b}\x1b|\x1bn\x1bo\x0f",
        "\x1b]0;title\x07\x1b]2;other\x1b\\\x1b]4;1;#123\x07\x1b]8;id=a;http://x/"
        "\x07link\x1b]8;;\x07\x1b]52;c;aGk=\x07",
        "\x1bP$qm\x1b\\\x1bP1;2|junk\x1b\\\x1b_apc\x1b\\\x1b^pm\x1b\\\x1bXsos\x1b\\\x1b]P1aabbcc\x1b]Rdone",
        "\x1b[?1049h\x1b[?1;6;25;1000;1006;2004;2026h\x1b[6n\x1b[c\x1b[?1049l\x1b[!p\x1b[?7$p\x1b[5n\x05",
        "\x1b[?2l\x1bY\x21\x22x\x1b"
        "A\x1b"
        "F\x1b"
        "G\x1bI\x1b<\x1b[2;2Hy\x1b[62;1\"p\x1b[1\"qp\x1b[0\"q\x1b[?2J",
        "\x1b[5iprinted\x1b[4\x1b[4i\x1b[?5iline\r\n\x1b[?4i\x1b[i",
        "a\x1b[1\b;2\rHb\x1b[1;\x18"
        "c\x1b]x\x1a"
        "d\x1bP\x1b[3;3He\x1b[\x1b[\x1b[[Af",
        "\x1b[99999999999;4294967297H\x1b[2147483647@\x1b[65535P\x1b[;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;;m"
        "\x1b[-5A\x1b[9999S\x1b[9999T\x1b[9999L\x1b[9999M\x1b[9999Xx\x1b[9999b\x1b[9999I\x1b[9999Z\x1b[0;0r\x1b[9;2r",
        "\x1b#3big\r\n\x1b#4big\r\n\x1b#6wide\x1b#5\x1b#8\x1b[?3hcols\x1b[?3l\x1b[?5h\x1b[?5l\x1b[4hins\x1b[4l\x1b"
        "c",
        "\x1b[?42h\x1b(K[\\]\x1b[?42l\x1b%@\xe4\xf6\x1b%G\xc3\xa4\x1b[11m\x01\x1b[12mM\x1b[10m\x1b[?2c",
        "\x1b[?69h\x1b[3;7s\x1b[2;4ra中文b中文\r\n中中中中中\n\n\x1b[S\x1b[T\x1b[2;4H\x1b[2@\x1b[3P\x1b[L\x1b[M\x1b[2'}"
        "\x1b[9'~\x1b"
        "6\x1b"
        "9\x1b[4hx\x1b[?6h\x1b[9;9Hy\x1b[r\x1b[s\x1b[?69l",
        "\x1b#6中wide\r\n文中e\x1b[1;1;3;9;1;2;4;1$v\x1b[2;2;9;9;1;1;1;1$v\x1b[42;1;2;2;9$x\x1b[1;1;2;3$z\x1b[1;3;2;5${"
        "\x1b["
        "1;4;3;2;1;7$r\x1b[2*x\x1b[1;1;9;9;0$t\x1b[1;1;1;1;9;99*y",
        "\x1b[1$w\x1b[2$w\x1bP1$t2;3;1;A;A;H;0;2;L;BBAA\x1b\\\x1bP2$t3/9/"
        "99\x1b\\\x1bP1!uA\x1b\\\x1b*<\x1bn\x1b[&u\x1b[132$|x\x1b["
        "80$|\x1b[\"v",
        "\x1bP0;1|17/4142;18/"
        "4\x1b\\\x1bP1;0;1!z61!3;1b5b41;1b5b322a7a\x1b\\\x1bP2;0;0!z+\x1b[1*z\x1b\\\x1b[1*z\x1b[2*z\x1b[?62;63n",
        "\x1bP1;1;1;8;0;2;10;0{ @~?@A/B;~~~;\x1b\\\x1b( @!\"#\x1b(B\x1bP2;0;2;0;2;1;0;1{&!x~\x1b\\\x1b-&!x\x0e "
        "!\x0f\x1b[1$w",
        "\x1b[24ta\r\nb\r\nc\x1b[20;3Hd\x1b[4A\x1b[2S\x1b[3T\x1bM\x1b[?61l\x1b[24;1H\n\n\x1b[\"v\x1b[?61h\x1b[36*|\x1b["
        "72t\x1b[U"
        "\x1b[60;2Hx\x1b[25te\x1b[24*|\x1b[2;1$u\x1bP2$p1;2;10;20;30/2;1;120;50;100/3;2;;;\x1b\\\x1b[2;2$u",
        "\x1b[2;1;4m\x1b[=1D\x1b[=3g\x1b[2;3;3;7r\x1b[9S\x1b[=0;2m\x1b[=3;4mtext in the "
        "window\x1b[42;99b\x1b[=l\x1bl\x1bm\x1b[=r\x1b[U\x1b[Y",
        "text\x9b"
        "2Dx\x9d"
        "0;t\x9c\x90$qr\x9c\x84\x85\x88\x8d\x8e"
        "d\x8fq",
    };
}

} // namespace kestrune::emu
