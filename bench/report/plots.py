"""Pictures as SVG, for light and for dark pages. matplotlib is imported when it is needed: before that it may be missing."""
from dataclasses import dataclass

_WIDTH, _INCH = 8.8, 100  # inches; pixels of one
_METADATA = ("Date", "Creator", "Format", "Type")


@dataclass(frozen=True)
class Theme:
    page: str
    text: str
    quiet: str
    ours: str
    raw: str  # the kernel or the compiler alone
    peers: tuple


THEMES = {
    "light": Theme("#ffffff", "#1f2328", "#8c98a1", "#0b5a7d", "#59636e",
                   ("#b35900", "#7a3e9d", "#2f7d32", "#a40e26", "#8a6d00", "#c2407f")),
    "dark": Theme("#0d1117", "#e6edf3", "#6b7781", "#7cc4e6", "#9aa5af",
                  ("#f0883e", "#c297e6", "#6cc070", "#ff8182", "#d4a72c", "#ee8bb8")),
}


def _settings(theme, name):
    return {
        "svg.fonttype": "none",
        "svg.hashsalt": name,
        "font.family": "sans-serif",
        "font.sans-serif": ["DejaVu Sans"],  # each text repeats the list
        "font.size": 10,
        "axes.spines.top": False,
        "axes.spines.right": False,
        "figure.facecolor": theme.page,
        "axes.facecolor": theme.page,
        "text.color": theme.text,
        "axes.labelcolor": theme.text,
        "axes.edgecolor": theme.quiet,
        "xtick.color": theme.text,
        "ytick.color": theme.text,
        "axes.titlecolor": theme.text,
        "legend.frameon": False,
    }


def plain_ticks(axis):
    """Numbers as people write them, on a logarithmic axis too."""
    import matplotlib.ticker

    if axis.get_scale() == "log":
        beside = (1, 2, 5) if axis.axis_name == "y" else (1,)  # more would not fit beside one another
        axis.set_major_locator(matplotlib.ticker.LogLocator(subs=beside))
    axis.set_major_formatter(matplotlib.ticker.FuncFormatter(lambda value, _: f"{value:,.10g}"))
    axis.set_minor_locator(matplotlib.ticker.NullLocator())


def draw(plots, figures, directory):
    """Each plot: a title, the picture's height in pixels, and what draws it into a figure."""
    import matplotlib
    import matplotlib.figure

    directory.mkdir(exist_ok=True)
    for name, (title, height, into) in plots.items():
        for shade, theme in THEMES.items():
            with matplotlib.rc_context(_settings(theme, name)):
                figure = matplotlib.figure.Figure(figsize=(_WIDTH, height / _INCH), layout="constrained")
                figure.suptitle(title, fontsize=11, x=0.01, ha="left")
                into(figure, theme, figures)
                figure.savefig(directory / f"{name}-{shade}.svg", metadata={key: None for key in _METADATA})
