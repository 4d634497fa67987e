"""Pictures of a graph, drawn offscreen."""
import matplotlib.image
import numpy as np
import pytest

import kxspatialgraph
from test_building import build_y


def test_picture_shows_the_label_colours_and_matches_the_png(tmp_path):
    path = tmp_path / "y.png"
    image = build_y().render(160, 120, color="Region", path=str(path))
    assert image.shape == (120, 160, 3) and image.dtype == np.uint8
    assert not image[0, 0].any() and not image[-1, -1].any()  # background in the corners
    pixels = image.reshape(-1, 3).astype(int)
    reddish = (pixels[:, 0] > 2 * pixels[:, 1] + 20) & (pixels[:, 0] > 2 * pixels[:, 2] + 20)
    greenish = (pixels[:, 1] > 2 * pixels[:, 0] + 20) & (pixels[:, 1] > 2 * pixels[:, 2] + 20)
    assert reddish.sum() > 20 and greenish.sum() > 20  # labels A (red) and B (green)
    written = matplotlib.image.imread(str(path))
    np.testing.assert_array_equal(np.round(written[:, :, :3] * 255).astype(np.uint8), image)


@pytest.mark.parametrize("arguments, error", [
    (dict(width=0), ValueError), (dict(height=8193), ValueError), (dict(path="y.gif"), ValueError),
    (dict(color="nosuch"), kxspatialgraph.Error),
])
def test_bad_pictures_are_refused(arguments, error):
    with pytest.raises(error):
        build_y().render(**{"width": 16, "height": 16, **arguments})
