"""Chromium for a test, and what a test asks of a page."""
import tempfile

from selenium import webdriver
from selenium.webdriver import ActionChains
from selenium.webdriver.chrome.service import Service

FLAGS = ('--headless --no-sandbox --disable-gpu --disable-quic --no-first-run '
         '--disable-background-networking --disable-component-update --disable-sync').split()


class Browser:
    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(prefix='page-test-', ignore_cleanup_errors=True)
        options = webdriver.ChromeOptions()
        for flag in FLAGS + ['--user-data-dir=' + self.profile.name]:
            options.add_argument(flag)
        options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
        self.driver = webdriver.Chrome(options=options, service=Service('/usr/bin/chromedriver'))
        self.look(1000, 760)

    def close(self):
        self.driver.quit()
        self.profile.cleanup()

    def look(self, width, height, phone=False, scheme='dark'):
        """From now on through a window of that size in CSS pixels."""
        self.driver.execute_cdp_cmd('Emulation.setDeviceMetricsOverride', {
            'width': width, 'height': height, 'mobile': phone,
            'deviceScaleFactor': 2 if phone else 1})
        self.driver.execute_cdp_cmd('Emulation.setEmulatedMedia', {
            'features': [{'name': 'prefers-color-scheme', 'value': scheme}]})

    def open(self, url):
        self.driver.get(url)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def settle(self):
        """Waits until what was asked for is drawn."""
        self.driver.execute_async_script(
            'requestAnimationFrame(() => requestAnimationFrame(arguments[0]))')

    def press(self, *keys):
        for key in keys:
            ActionChains(self.driver).send_keys(key).perform()
        self.settle()

    def click(self, selector):
        """The first element that the selector names."""
        self.driver.find_element('css selector', selector).click()
        self.settle()

    def choose(self, label):
        """The filter of that name."""
        self.run('[...document.querySelectorAll("#filters button")]'
                 '.find(each => each.firstChild.data === arguments[0]).click()', label)

    def search(self, text):
        self.run('const input = document.getElementById("search"); input.focus(); input.select()')
        self.press(*text)

    def names(self):
        return self.texts('#grid .name')

    def texts(self, selector):
        return self.run('return [...document.querySelectorAll(arguments[0])]'
                        '.map(each => each.textContent)', selector)

    def text(self, selector):
        return self.texts(selector)[0]

    def focused(self):
        """The name of the tile that has the focus, or the element's id."""
        return self.run('const at = document.activeElement, name = at.querySelector(".name");'
                        'return name ? name.textContent : at.id')

    def complaints(self):
        """What the console has, a refusal by the page's policy among it."""
        return [each['message'] for each in self.driver.get_log('browser')]
