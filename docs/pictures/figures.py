"""The figures of the documents: what calls what, the life of one call, and the way of a call through a message broker."""
import html
from dataclasses import dataclass

_SANS = "system-ui,-apple-system,'Segoe UI',Roboto,'Noto Sans','DejaVu Sans',sans-serif"
_MONO = "ui-monospace,SFMono-Regular,Menlo,Consolas,'DejaVu Sans Mono',monospace"
_WIDTH = 880


@dataclass(frozen=True)
class _Colours:
    page: str
    frame: str
    text: str
    quiet: str
    ships: str  # what is on the gateway, and where it ends
    ships_edge: str
    kit: str
    kit_edge: str
    failure: str


_THEMES = {
    "light": _Colours("#ffffff", "#d0d7de", "#1f2328", "#59636e", "#d9edf6", "#0b5a7d", "#f3f6f8", "#8c98a1", "#a40e26"),
    "dark": _Colours("#0d1117", "#30363d", "#e6edf3", "#9aa5af", "#12394b", "#7cc4e6", "#1a2228", "#6b7781", "#ff8182"),
}


class _Sheet:
    def __init__(self, height, theme, title, description):
        colours = _THEMES[theme]
        self._parts = [
            f'<svg xmlns="http://www.w3.org/2000/svg" width="{_WIDTH}" height="{height}" '
            f'viewBox="0 0 {_WIDTH} {height}" role="img">',
            f"<title>{html.escape(title)}</title>",
            f"<desc>{html.escape(description)}</desc>",
            "<style>"
            f"text{{font:14px {_SANS};fill:{colours.text}}}.b{{font-weight:600}}.q{{fill:{colours.quiet};font-size:12.5px}}"
            f".m{{font:12.5px {_MONO}}}.s{{font-size:13px}}.f{{fill:{colours.failure};font-size:12.5px}}"
            f".c{{text-anchor:middle}}"
            f".ships{{fill:{colours.ships};stroke:{colours.ships_edge}}}.kit{{fill:{colours.kit};stroke:{colours.kit_edge}}}"
            f".own{{fill:none;stroke:{colours.quiet};stroke-dasharray:5 4}}"
            f".line{{stroke:{colours.quiet};stroke-width:1.5;fill:none}}.no{{stroke:{colours.failure};stroke-dasharray:5 4}}"
            f".life{{stroke-width:.75}}.tip{{fill:{colours.quiet}}}.notip{{fill:{colours.failure}}}"
            "</style>",
            f'<rect x=".5" y=".5" width="{_WIDTH - 1}" height="{height - 1}" rx="6" '
            f'fill="{colours.page}" stroke="{colours.frame}"/>',
        ]

    def text(self, x, y, text, kind=""):
        self._parts.append(f'<text x="{x}" y="{y}" class="{kind}">{html.escape(text, quote=False)}</text>')

    def box(self, x, y, width, height, kind, title, below=()):
        """A box with a title, and lines in its middle."""
        self._parts.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="6" class="{kind}"/>')
        first = y + (height - 18 * len(below)) / 2 + 5
        self.text(x + width / 2, first, title, "b c")
        for number, line in enumerate(below):
            self.text(x + width / 2, first + 18 * (number + 1), line, "q c")

    def line(self, start, end, kind=""):
        self._parts.append(f'<path d="M{start[0]} {start[1]}L{end[0]} {end[1]}" class="line {kind}"/>')

    def arrow(self, start, end, fails=False):
        """A line to the right, to the left or down, with a tip at its end."""
        self.line(start, end, "no" if fails else "")
        x, y = end
        back = 8 if start[0] > x else -8
        tip = f"l{back} -4v8z" if start[1] == y else "l-4 -8h8z"
        self._parts.append(f'<path d="M{x} {y}{tip}" class="{"notip" if fails else "tip"}"/>')

    def step(self, x, y, verb, rest):
        """What somebody does, on that one's line."""
        self._parts.append(f'<rect x="{x - 125}" y="{y - 17}" width="250" height="32" rx="6" class="ships"/>')
        rest = html.escape(rest, quote=False)
        self._parts.append(f'<text x="{x}" y="{y + 4}" class="s c"><tspan class="b">{verb}</tspan> {rest}</text>')

    def svg(self):
        return "\n".join([*self._parts, "</svg>", ""])


def house(theme):
    """Who calls whom, what ships on the gateway, and what takes its place on a workstation."""
    sheet = _Sheet(500, theme, "What calls what", "Components, tarnctl and Python call libtarn. libtarn calls four functions "
                   "of the platform. On a gateway these are its own IPC library's, which reaches its services; on a "
                   "workstation libkoriil's, which reaches the simulated gateway; in unit tests the mock's.")
    callers = (("a component", ("C or C++",)), ("tarnctl", ("the command line",)), ("tarn for Python", ("and pytest",)))
    for at, (title, below) in enumerate(callers):
        x = 30 + 210 * at
        sheet.box(x, 24, 190, 56, "own" if at == 0 else "kit", title, below)
        sheet.arrow((x + 95, 80), (x + 95, 112))
    sheet.box(30, 112, 610, 96, "ships", "libtarn", (
        "one function for each command; checks, one message, its result",
        "tarn_api: device service; tarn_qtn_monitor_api: Wi-Fi module; frame: the steps of a call"))
    sheet.text(335, 238, "kor_iil.h: four functions that the platform supplies", "q c")
    below_library = (
        ("the gateway's own", ("IPC library",), "own", "its services", ("TARN, QTN_RPC_PROXY,", "QTN_MIRROR")),
        ("libkoriil", ("for a workstation",), "kit", "tarn-gateway", ("the same services over", "a model of a gateway")),
        ("the mock", ("for unit tests",), "kit", "a script", ("the calls expected,", "and their answers")),
    )
    for at, (title, below, kind, service, tells) in enumerate(below_library):
        x = 30 + 210 * at
        sheet.arrow((x + 95, 246), (x + 95, 268))
        sheet.box(x, 268, 190, 56, kind, title, below)
        sheet.arrow((x + 95, 324), (x + 95, 356))
        sheet.box(x, 356, 190, 76, kind, service, tells)
    sheet.box(680, 112, 170, 320, "kit", "the wire as data", (
        "", "contract: messages", "of every function", "", "layouts: what is", "inside records", "", "read by the kit",
        "and its tests,", "not by libtarn"))
    for at, (kind, text) in enumerate((("ships", "ships on the gateway"), ("kit", "the kit"), ("own", "not of this project"))):
        sheet.box(30 + 210 * at, 458, 22, 16, kind, "")
        sheet.text(60 + 210 * at, 471, text, "q")
    return sheet.svg()


# Of the steps of a call: from and to which of the four, what is said, and how: in code, as a failure. A step of one alone
# begins with its verb.
_FOUR = (("a component", 92), ("libtarn", 350), ("IPC library", 620), ("service", 796))
_STEPS = (
    (0, 1, 'TarnGetRadio("ledd", 1, &data)', "m"),
    (1, 1, "refuse a bad caller id, a null pointer", ""),
    (1, 0, "3; one trace, nothing is sent", "f"),
    (1, 1, "fill in radio 0; all else is zero", ""),
    (1, 2, 'KorIilExecute("ledd", "TARN", ...)', "m"),
    (2, 3, "command 7, 9584 bytes", "s"),
    (3, 2, "reply in their place", "s"),
    (2, 1, "an IPC status: no answer", "f"),
    (1, 0, "2 timed out, 1 failed; one trace", "f"),
    (2, 1, "0: the reply is there", "s"),
    (1, 1, "copy out the record, 9552 bytes", ""),
    (1, 0, "return the reply status", "s"),
)


def _sequence(theme, title, description, columns, steps, ships):
    """What passes between the columns, from the top to the bottom; what ends it early is dashed."""
    step = 44
    height = 106 + step * len(steps)
    sheet = _Sheet(height, theme, title, description)
    for at, (name, x) in enumerate(columns):
        sheet.line((x, 56), (x, height - 24), "life")
        sheet.box(x - 66, 20, 132, 36, ships.get(at, "own"), name)
    for number, (start, end, text, kind) in enumerate(steps):
        y = 98 + step * number
        x, to = columns[start][1], columns[end][1]
        if start == end:
            sheet.step(x, y, *text.split(" ", 1))
        else:
            sheet.arrow((x, y), (to, y), fails=kind == "f")
            sheet.text((x + to) / 2, y - 7, text, "c " + kind)
    return sheet.svg()


def call(theme):
    return _sequence(theme, "The life of one call", "A component calls TarnGetRadio. libtarn refuses bad arguments, "
                     "fills a message and hands it to the IPC library, which brings the service's reply. libtarn copies the "
                     "record out and returns the reply status. A refused argument returns 3, a failed IPC call 1 or 2, each "
                     "with one trace.", _FOUR, _STEPS, {1: "ships"})


# The same of a call on a gateway behind a message broker.
_FLEET = (("tarn-fleet", 150), ("broker", 400), ("tarn-bridge", 650), ("service", 806))
_FLEET_STEPS = (
    (2, 1, "birth: run, clock; and a will", "s"),
    (0, 1, "request: run, clock, time to live", "s"),
    (1, 1, "check certificate and access list", ""),
    (1, 2, "request, at once or never", "s"),
    (2, 2, "judge run, repeats, contract, policy", ""),
    (2, 1, "refusal", "f"),
    (1, 0, "refused: the call was not made", "f"),
    (2, 2, "wait for its turn; still alive?", ""),
    (2, 3, "KorIilExecute", "m"),
    (3, 2, "reply", "s"),
    (2, 1, "reply: session, sequence", "s"),
    (1, 0, "reply", "s"),
    (0, 0, "match it with what was asked", ""),
)


def fleet(theme):
    return _sequence(theme, "The way of a call through a message broker", "tarn-bridge has told the broker of itself. "
                     "tarn-fleet sends a request for that run of the bridge, with a time to live. The broker checks who sends "
                     "it, and hands it on at once or never. The bridge refuses what is meant for another run, was here before, "
                     "has another contract or is not allowed; what has its turn in time it calls once, and answers. tarn-fleet "
                     "takes an answer only to what it has asked.", _FLEET, _FLEET_STEPS, {2: "ships", 0: "kit"})


FIGURES = {"house": house, "call": call, "fleet": fleet}
THEMES = tuple(_THEMES)
